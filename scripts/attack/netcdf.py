"""Results in NetCDF, of the classic format (CDF-2): whether they are what a run may leave."""
import math
import struct
from dataclasses import dataclass

FLOAT = 5  # the type of results, unlike that of the mesh
SIZES = {1: 1, 2: 1, 3: 2, 4: 4, 5: 4, 6: 8}  # of the types, bytes
RECORD_DIMENSION = 0  # its length in the file


@dataclass
class Variable:
    type: int
    begin: int
    size: int  # bytes; of one record
    is_record: bool


class Header:
    """Throws ValueError or LookupError where the text is no whole header."""

    def __init__(self, text):
        if text[:4] != b"CDF\x02":
            raise ValueError("no CDF-2")
        self.text, self.place = text, 4
        self.count = self.number()
        lengths = [self.dimension() for _ in self.entries()]
        self.skip_attributes()
        self.variables = [self.variable(lengths) for _ in self.entries()]
        self.end = self.place

    def number(self, size=4):
        piece = self.text[self.place:self.place + size]
        if len(piece) < size:
            raise ValueError("cut short")
        self.place += size
        return int.from_bytes(piece, "big")

    def entries(self):
        self.number()  # the tag of the list
        return range(self.number())

    def skip(self, size):
        self.place += (size + 3) // 4 * 4

    def dimension(self):
        self.skip(self.number())
        return self.number()

    def skip_attributes(self):
        for _ in self.entries():
            self.skip(self.number())
            size = SIZES[self.number()]
            self.skip(size * self.number())

    def variable(self, lengths):
        self.skip(self.number())
        dimensions = [self.number() for _ in range(self.number())]
        self.skip_attributes()
        type, size, begin = self.number(), self.number(), self.number(8)
        is_record = bool(dimensions) and lengths[dimensions[0]] == RECORD_DIMENSION
        return Variable(type, begin, size, is_record)


def are_maxima(values):
    """Of some moment, or not there yet."""
    numbers = struct.unpack(f">{len(values) // 4}f", values[:len(values) // 4 * 4])
    return not any(math.isinf(value) for value in numbers)


def damage_of_records(text, whole):
    """What is wrong with results of a run that was cut short, of which the whole ones are given;
    None if nothing is. They may hold fewer records, and maxima of an earlier moment."""
    try:
        header = Header(text)
    except (ValueError, LookupError):
        return "has no whole header"
    if text[8:header.end] != whole[8:header.end]:
        return "has another header than that of the undisturbed run"
    size_of_record = sum(v.size for v in header.variables if v.is_record)
    for variable in header.variables:
        for record in range(header.count if variable.is_record else 1):
            begin = variable.begin + record * size_of_record
            values, right = (file[begin:begin + variable.size] for file in (text, whole))
            may_differ = variable.type == FLOAT and not variable.is_record
            if len(values) < variable.size:
                return f"ends at byte {len(text)}, within what it says it holds"
            if values != right and not (may_differ and are_maxima(values)):
                return f"differs from that of the undisturbed run at byte {begin}"
    return None
