"""A screenshot taken as a binary PPM (import -window root -depth 8 ppm:...)
read as width, height and its RGB bytes, for the scripts that look for
exact pixels."""


def read_ppm(path):
    data = open(path, 'rb').read()
    # P6 header: magic, width, height, maximum, each followed by white space.
    fields, at = [], 0
    while len(fields) < 4:
        while data[at:at + 1].isspace():
            at += 1
        start = at
        while not data[at:at + 1].isspace():
            at += 1
        fields.append(data[start:at])
    return int(fields[1]), int(fields[2]), memoryview(data)[at + 1:]
