"""Titles of pictures, and their files."""
import io
import sys
import textwrap

import matplotlib.pyplot as plt


def title_of(job, shown):
    """The user's title, or what is shown of the case, letter by letter: without the signs that no
    font has, a dollar sign begins no formula, and a long text takes several lines."""
    if not job["has_titles"]:
        return ""
    text = job["title"] or f"{job['case']}: {shown}"
    lines = [part for line in text.split("\n")
             for part in textwrap.wrap(plain_text(line), 110) or [""]]
    if len(lines) > 6:
        lines[5:] = [lines[5] + " …"]
    return "\n".join(lines).replace("$", r"\$")


def plain_text(text):
    """Without the signs that no font has."""
    return "".join(c if c.isprintable() else " " for c in text)


def save(figure, output, dpi):
    """PNG pictures get a palette of 256 colours, which makes them several times smaller."""
    try:
        if output.endswith(".svg"):
            figure.savefig(output, format="svg", dpi=dpi, bbox_inches="tight", pad_inches=0.1,
                           metadata={"Date": None})
        elif output.endswith(".pdf"):
            figure.savefig(output, format="pdf", dpi=dpi, bbox_inches="tight", pad_inches=0.1,
                           metadata={"CreationDate": None})
        else:
            save_png(figure, output, dpi)
    except OSError as error:
        sys.exit(f"{output} couldn't be written: {error}.")
    plt.close(figure)


def save_png(figure, output, dpi):
    from PIL import Image  # matplotlib itself needs it

    picture = io.BytesIO()
    figure.savefig(picture, format="png", dpi=dpi, bbox_inches="tight", pad_inches=0.1)
    with Image.open(picture) as image:
        palette = image.convert("RGB").quantize(256, method=Image.Quantize.MAXCOVERAGE,
                                                dither=Image.Dither.NONE)
        palette.save(output, format="PNG", optimize=True)
