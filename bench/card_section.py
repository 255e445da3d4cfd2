"""The section on graphics cards of the page of measured speeds, which is measured by itself."""
import re

PAGE = "docs/performance.md"
HEADING = "## On a graphics card"


def present():
    """That of the page as it is; empty without one."""
    with open(PAGE) as file:
        found = re.search(rf"^{HEADING}\n.*?(?=^## |\Z)", file.read(), re.DOTALL | re.MULTILINE)
    return found.group(0).rstrip() if found else ""


def write(text):
    old = present()
    with open(PAGE) as file:
        page = file.read()
    page = page.replace(old, text) if old else page.rstrip() + "\n\n" + text + "\n"
    with open(PAGE, "w") as file:
        file.write(page)
    print(f"Written: {PAGE}")
