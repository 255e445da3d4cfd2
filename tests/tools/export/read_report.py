#!/usr/bin/python3
"""Prints as JSON what independent readers find in a report.

read_report.py page FILE      what an HTML parser finds: the title, the sections, the texts, which
                              elements there are, those that nobody closed, and what leads outside
read_report.py curves FILE CAPTION   the texts of a diagram, and the corners of its curves by their
                                     colours
read_report.py picture FILE   size and colours of a PNG picture
"""
import base64
import json
import re
import sys
from html.parser import HTMLParser

EMPTY = {"meta", "img", "br", "hr", "link", "input"}  # elements without an end


class Page(HTMLParser):
    def __init__(self):
        super().__init__(convert_charrefs=True)
        self.open, self.faults, self.ids, self.links, self.outside = [], [], [], [], []
        self.elements, self.pictures, self.texts, self.title = set(), [], [], ""

    def handle_starttag(self, tag, attributes):
        self.elements.add(tag)
        if tag not in EMPTY:
            self.open.append(tag)
        for name, value in attributes:
            if name == "id":
                self.ids.append(value)
            elif name == "src":
                self.pictures.append((value or "").split(",")[0])
                if not (value or "").startswith("data:image/"):
                    self.outside.append(value)
            elif name == "href":
                self.links.append(value)
            elif name.startswith("on"):
                self.faults.append(f"{tag} {name}")
            elif "http" in (value or ""):
                self.outside.append(value)

    def handle_endtag(self, tag):
        if not self.open or self.open.pop() != tag:
            self.faults.append(f"/{tag}")

    def handle_data(self, data):
        if self.open and self.open[-1] == "title":
            self.title += data
        elif self.open and self.open[-1] == "style":
            if "url(" in data or "@import" in data or "http" in data:
                self.outside.append(data)
        elif data.strip():
            self.texts.append(" ".join(data.split()))


def page(path):
    with open(path, encoding="utf-8") as file:
        text = file.read()
    parser = Page()
    parser.feed(text)
    parser.close()
    outside = parser.outside + [link for link in parser.links if not link.startswith("#")]
    print(json.dumps({
        "title": parser.title, "faults": parser.faults + parser.open, "ids": parser.ids,
        "elements": sorted(parser.elements), "outside": outside, "pictures": parser.pictures,
        "dead_links": [link for link in parser.links if link[1:] not in parser.ids],
        "text": "\n".join(parser.texts)}))


def curves(path, caption):
    """In the picture's own coordinates. Its texts are drawn, with themselves as comments before."""
    with open(path, encoding="utf-8") as file:
        page_text = file.read()
    source = re.search(rf'src="data:image/svg\+xml;base64,([^"]*)" alt="{caption}"', page_text)
    text = base64.b64decode(source[1]).decode("utf-8")
    lines = {}
    for points, colour in re.findall(r'<path d="([^"]*)" clip-path="[^"]*" '
                                     r'style="fill: none; stroke: (#\w{6}); stroke-width: 1.6', text):
        lines[colour] = corners([[float(x), float(y)]
                                 for x, y in re.findall(r"[ML] (\S+) (\S+)", points)])
    print(json.dumps({"texts": re.findall("<!-- (.*) -->", text), "lines": lines}))


def corners(points):
    """The points of a line along two axes without those between two others of a straight piece."""
    kept = []
    for point in points:
        if len(kept) > 1 and any(kept[-2][k] == kept[-1][k] == point[k] for k in (0, 1)):
            kept.pop()
        if not kept or kept[-1] != point:
            kept.append(point)
    return kept


def picture(path):
    from PIL import Image

    with Image.open(path) as image:
        colours = image.convert("RGB").getcolors(2 ** 24)
    print(json.dumps({"size": image.size,
                      "colours": {"#%02x%02x%02x" % colour: count for count, colour in colours}}))


if __name__ == "__main__":
    {"page": page, "curves": curves, "picture": picture}[sys.argv[1]](*sys.argv[2:])
