"""The pieces of a page. Texts go through `escape` here and nowhere else; what these functions answer is
HTML."""
import base64
import html
import math
from pathlib import Path

MEDIA = {".png": "image/png", ".svg": "image/svg+xml"}


def escape(text):
    """A text letter by letter, without the signs that no page may hold."""
    text = "".join(c if c.isprintable() or c == "\n" else " " for c in str(text))
    return html.escape(text)


def number(value, unit="", digits=4):
    """A number to some digits with its unit, and a dash for none: "12 345.6 m"."""
    if not is_number(value):
        return "–"
    if value != 0 and not 1e-4 <= abs(value) < 1e9:
        text = f"{value:.{digits - 1}e}"
        mantissa, power = text.split("e")
        text = f"{mantissa} · 10<sup>{int(power)}</sup>"
    else:
        whole = len(str(int(abs(value)))) if abs(value) >= 1 else 0
        leading = -math.floor(math.log10(abs(value))) - 1 if 0 < abs(value) < 1 else 0
        text = f"{value:,.{max(0, digits - whole + leading)}f}"
        if "." in text:
            text = text.rstrip("0").rstrip(".")
        text = text.replace(",", "\u202f")
    text = text.replace("-", "−")
    return f"{text}&nbsp;{escape(unit)}" if unit else text


def is_number(value):
    return isinstance(value, (int, float)) and not isinstance(value, bool) and math.isfinite(value)


def count(value):
    """A whole number, of which every digit counts."""
    return f"{value:,}".replace(",", "\u202f") if is_number(value) else "–"


def duration(seconds):
    """A time of the run: "8 400 s (2 h 20 min)"."""
    if not is_number(seconds):
        return "–"
    text = number(seconds, "s", 6)
    if abs(seconds) < 600:
        return text
    minutes = round(seconds / 60)
    return f"{text} ({minutes // 60}&nbsp;h&nbsp;{minutes % 60:02d}&nbsp;min)"


def paragraph(text, kind=""):
    attribute = f' class="{kind}"' if kind else ""
    return f"<p{attribute}>{text}</p>\n"


def facts(rows):
    """Names, which are escaped, and values, which are HTML."""
    lines = "".join(f'<tr><th scope="row">{escape(name)}</th><td>{value}</td></tr>\n'
                    for name, value in rows)
    return f'<table class="facts">\n<tbody>\n{lines}</tbody>\n</table>\n'


def table(titles, rows, texts=1):
    """Titles are escaped, values are HTML; the first columns, so many, are texts, others numbers."""
    def cells(tag, values):
        kinds = ["" if k < texts else ' class="number"' for k in range(len(values))]
        return "".join(f"<{tag}{kind}>{value}</{tag}>" for kind, value in zip(kinds, values))

    head = cells("th", [escape(title) for title in titles])
    body = "".join(f"<tr>{cells('td', row)}</tr>\n" for row in rows)
    return (f'<div class="wide"><table>\n<thead><tr>{head}</tr></thead>\n'
            f"<tbody>\n{body}</tbody>\n</table></div>\n")


def figure(picture, caption):
    """A picture of the working folder, kept within the page. The caption is escaped."""
    data = base64.b64encode(Path(picture).read_bytes()).decode("ascii")
    source = f"data:{MEDIA[Path(picture).suffix]};base64,{data}"
    return (f'<figure>\n<img src="{source}" alt="{escape(caption)}">\n'
            f"<figcaption>{escape(caption)}</figcaption>\n</figure>\n")


def section(name, title, content):
    return f'<section id="{name}">\n<h2>{escape(title)}</h2>\n{content}</section>\n'


def heading(text):
    return f"<h3>{escape(text)}</h3>\n"
