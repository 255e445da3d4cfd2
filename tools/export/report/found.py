"""What a document of JSON holds at a path, of which any part may be missing or something else."""
from report.html import is_number


def find(document, path):
    """What stands at "steps/smallest/cell"; none where nothing does."""
    for name in path.split("/"):
        if not isinstance(document, dict) or name not in document:
            return None
        document = document[name]
    return document


def find_number(document, path):
    value = find(document, path)
    return value if is_number(value) else None


def find_numbers(document, path):
    """The numbers of a list; none of them where it holds anything else."""
    value = find(document, path)
    is_list = isinstance(value, list) and all(is_number(part) for part in value)
    return value if is_list else []


def find_list(document, path):
    """The objects of a list; none of them where there is no list."""
    value = find(document, path)
    return [part for part in value if isinstance(part, dict)] if isinstance(value, list) else []


def find_objects(document, path):
    """Names and objects of an object."""
    value = find(document, path)
    if not isinstance(value, dict):
        return []
    return [(name, part) for name, part in value.items() if isinstance(part, dict)]
