#!/usr/bin/env python3
"""Writes the seeds of the text, thumbnail and metafile-answer fuzz targets
(the metafile and RLE seeds are small files copied from the test corpus)."""
import os
import struct
import zlib

HERE = os.path.dirname(os.path.abspath(__file__))

# A thumbnail's picture, its time and size.
PICTURE_URI = b"file:///home/user/Pictures/holiday%20photo.png"
PICTURE_MTIME = b"1000000000"
PICTURE_SIZE = b"7"

TEXTS = {
    "playlist": {
        "asx.txt": b'<ASX version="3.0"><Title>t</Title><Entry><Ref HREF="clip.avi"/>'
                   b'<Ref href="http://example.com/a.wmv"/></Entry>'
                   b'<ENTRYREF HREF="other.asx"/><Entry><ref href="clips\\movie.mpg"/></Entry></ASX>\n',
        "entities.txt": b'<asx><entry><ref href="Clips/Movie.MPG?a=1&amp;b=&#x41;&#65;"/></entry></asx>',
        "reference.txt": b"[Reference]\r\nRef1=http://example.com/a.asf?MSWMExt=.asf\r\nRef2=mms://example.com/a.asf\r\n",
        "ram.txt": b"# a comment\nclip.avi\nfile:///tmp/none.mpg\nrtsp://example.com/a.rm\n\n./Clips/movie.mpg\n",
        "utf16.txt": "\ufeff<asx><entry><ref href=\"clip.avi\"/></entry></asx>".encode("utf-16-le"),
    },
    "message_file": {
        "sections.txt": b"; comment\n[msgEN]\n2=View with\n[msgIT]\n2 = \"Visualizza con\"\n17='x'\n299=" + b"y" * 320 + b"\n[msgIT]\n2=second\n",
        "latin1.txt": b"[msgIT]\r\n2=Qualit\xe0\r\n[broken\r\n=empty key\r\n",
        "bom.txt": b"\xef\xbb\xbf[ msgit ]\n 17 =value\n",
    },
    "mimeapps": {
        "plain.txt": b"[Default Applications]\nimage/png=other.desktop\n\n[Added Associations]\nimage/png=a.desktop;b.desktop;\n",
        "crlf.txt": b"# comment\r\n[Default Applications]\r\n  image/png = x.desktop\r\n[Default Applications]\r\nimage/png=y\r\n",
        "empty_group.txt": b"[Default Applications]\n\n\n[Removed Associations]\n",
    },
}


def chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))


def png(texts, width=2, height=2):
    header = struct.pack(">IIBBBBB", width, height, 8, 6, 0, 0, 0)
    rows = b"".join(b"\0" + b"\x80\x40\x20\xff" * width for _ in range(height))
    body = b"".join(chunk(b"tEXt", key + b"\0" + value) for key, value in texts)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + body
            + chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b""))


def thumbnails():
    valid = [(b"Thumb::URI", PICTURE_URI), (b"Thumb::MTime", PICTURE_MTIME)]
    return {
        "valid.png": png(valid),
        "sized.png": png(valid + [(b"Thumb::Size", PICTURE_SIZE), (b"Thumb::Image::Width", b"640"),
                                  (b"Thumb::Image::Height", b"480")]),
        "stale.png": png([(b"Thumb::URI", PICTURE_URI), (b"Thumb::MTime", b"1")]),
        "untagged.png": png([]),
    }


def metafile_answer(width, height, natural, pixel):
    header = b"VMF1" + struct.pack("<IIII", width, height, *natural)
    return header + struct.pack("<I", pixel) * (width * height)


def metafile_answers():
    return {
        "natural.bin": metafile_answer(3, 2, (3, 2), 0xFF2040C0),
        "scaled.bin": metafile_answer(4, 1, (4000, 1000), 0x80402010),
        "brighter_than_alpha.bin": metafile_answer(2, 2, (2, 2), 0x10FFFFFF),
        "short.bin": metafile_answer(2, 2, (2, 2), 0xFFFFFFFF)[:-3],
    }


def main():
    seeds = dict(TEXTS)
    seeds["thumbnail_cache"] = thumbnails()
    seeds["metafile_answer"] = metafile_answers()
    for target, files in seeds.items():
        folder = os.path.join(HERE, "seeds", target)
        os.makedirs(folder, exist_ok=True)
        for name, data in files.items():
            with open(os.path.join(folder, name), "wb") as out:
                out.write(data)


if __name__ == "__main__":
    main()
