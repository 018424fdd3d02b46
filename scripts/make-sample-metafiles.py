#!/usr/bin/env python3
"""Writes the small WMF and EMF samples shipped with Vimora."""
import struct
import sys

out = sys.argv[1]


def wmf_record(function, *words):
    return struct.pack('<IH', 3 + len(words), function) + struct.pack('<%dH' % len(words), *(w & 0xFFFF for w in words))


def wmf():
    body = b''.join([
        wmf_record(0x020B, 0, 0),                      # SetWindowOrg
        wmf_record(0x020C, 600, 800),                  # SetWindowExt (y, x)
        wmf_record(0x02FC, 0, 0x7FD4, 0x002A, 0),      # CreateBrushIndirect: solid, #D47F2A
        wmf_record(0x012D, 0),                          # SelectObject brush
        wmf_record(0x02FA, 0, 8, 0, 0x3020, 0x0060),    # CreatePenIndirect: width 8, #203060
        wmf_record(0x012D, 1),                          # SelectObject pen
        wmf_record(0x041B, 560, 760, 40, 40),           # Rectangle (bottom, right, top, left)
        wmf_record(0x02FC, 0, 0x9E3A, 0x002F, 0),      # CreateBrushIndirect: #3A9E2F
        wmf_record(0x012D, 2),
        wmf_record(0x0418, 500, 500, 100, 100),         # Ellipse
        wmf_record(0x0000),                             # EOF
    ])
    objects = 3
    words = 9 + len(body) // 2
    header = struct.pack('<HHHIHIH', 1, 9, 0x0300, words, objects, 9, 0)
    placeable = struct.pack('<IHhhhhHI', 0x9AC6CDD7, 0, 0, 0, 800, 600, 160, 0)  # 480 x 360 pixels
    checksum = 0
    for (w,) in struct.iter_unpack('<H', placeable[:20]):
        checksum ^= w
    placeable += struct.pack('<H', checksum)
    with open(out + '/sample.wmf', 'wb') as f:
        f.write(placeable + header + body)


def emf_record(kind, payload):
    return struct.pack('<II', kind, 8 + len(payload)) + payload


def emf():
    records = [
        emf_record(39, struct.pack('<IIHH', 0, 0x0030A0E0, 0, 0)[:12]),          # CreateBrushIndirect ih=1
        emf_record(37, struct.pack('<I', 1)),                                      # SelectObject
        emf_record(43, struct.pack('<iiii', 20, 20, 300, 200)),                   # Rectangle
        emf_record(38, struct.pack('<IIiiI', 2, 0, 6, 0, 0x00602020)),            # CreatePen ih=2 width 6
        emf_record(37, struct.pack('<I', 2)),
        emf_record(42, struct.pack('<iiii', 60, 40, 260, 180)),                   # Ellipse
        emf_record(14, struct.pack('<III', 0, 16, 20)),                            # EOF
    ]
    # CreateBrushIndirect: ihBrush, LogBrush(style, color, hatch)
    records[0] = emf_record(39, struct.pack('<IIII', 1, 0, 0x0030A0E0, 0))
    body = b''.join(records)
    bounds = struct.pack('<iiii', 0, 0, 320, 220)
    frame = struct.pack('<iiii', 0, 0, 8467, 5821)                                # 0.01 mm at 96 DPI
    size = 88 + len(body)
    header_payload = (bounds + frame + struct.pack('<IIIIHH', 0x464D4520, 0x10000, size, len(records) + 1, 3, 0)
                      + struct.pack('<III', 0, 0, 0) + struct.pack('<ii', 1920, 1080) + struct.pack('<ii', 508, 286))
    header = emf_record(1, header_payload)
    assert len(header) == 88
    with open(out + '/sample.emf', 'wb') as f:
        f.write(header + body)


wmf()
emf()
