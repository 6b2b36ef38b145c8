#!/usr/bin/env python3
"""Lets encap icon and independent programs read each other's files and clipboards.

    icon_programs.py ENCAP [TEST...]

ENCAP is the program. A test whose programs are not installed is skipped and says so, with status 77
when all are; with ENCAP_TEST_PROGRAMS=required in the environment it fails instead.
"""

import json
import os
import pty
import shutil
import struct
import subprocess
import sys
import tempfile
import unittest
from contextlib import contextmanager
from pathlib import Path

ENCAP = ""
SECONDS = 60
VGA = [0x000000, 0x800000, 0x008000, 0x808000, 0x000080, 0x800080, 0x008080, 0x808080,
       0xC0C0C0, 0xFF0000, 0x00FF00, 0xFFFF00, 0x0000FF, 0xFF00FF, 0x00FFFF, 0xFFFFFF]


def rgba(colour, alpha=255):
    return bytes((colour >> 16 & 255, colour >> 8 & 255, colour & 255, alpha))


# Pictures that their depth holds without loss. Some have transparent pixels.
def checks(x, y):
    return rgba(0xFFFFFF if (x // 3 + y // 2) % 2 else 0)


def vga(x, y):
    return rgba(0, 0) if x == 1 and y < 5 else rgba(VGA[(x + 2 * y) % 16])


def cube(x, y):
    return rgba((x % 6 * 51) << 16 | (y % 6 * 51) << 8 | (x + y) % 6 * 51)


def gradient(x, y):
    return rgba(0, 0) if x == y else rgba((x * 11 & 255) << 16 | (y * 7 & 255) << 8 | (x ^ y) * 5)


def glass(x, y):
    return gradient(x, y)[:3] + bytes((255 - (x * 9 & 127),))


PICTURES = {1: checks, 4: vga, 8: cube, 24: gradient, 32: glass}
# At 24 bits a multiple of 4: icotool takes no account of padding there, not in its own files either.
SIZES = {1: (13, 16), 4: (16, 15), 8: (33, 7), 24: (12, 5), 32: (32, 32)}
PNG_SIZE = (64, 48)


def draw(picture, size):
    return b"".join(picture(x, y) for y in range(size[1]) for x in range(size[0]))


def seen(pixels):
    """The pixels with those black that cannot be seen."""
    quads = (pixels[at : at + 4] for at in range(0, len(pixels), 4))
    return b"".join(quad if quad[3] else bytes(4) for quad in quads)


def opaque(pixels):
    return b"".join(pixels[at : at + 3] + b"\xff" for at in range(0, len(pixels), 4))


def images_of(ico):
    """(width, height, bytes) of each image as the directory of an ICO file has it."""
    count = struct.unpack_from("<HHH", ico)[2]
    entries = [struct.unpack_from("<BBBBHHII", ico, 6 + 16 * index) for index in range(count)]
    return [(e[0] or 256, e[1] or 256, ico[e[7] : e[7] + e[6]]) for e in entries]


class ProgramTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="encap-icon-")
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def need(self, *programs):
        missing = [program for program in programs if not shutil.which(program)]
        if missing and os.environ.get("ENCAP_TEST_PROGRAMS") == "required":
            self.fail("not installed: " + ", ".join(missing))
        if missing:
            self.skipTest("not installed: " + ", ".join(missing))

    def run_program(self, *command, status=0, **options):
        done = subprocess.run([str(part) for part in command], timeout=SECONDS, check=False,
                              stdin=subprocess.DEVNULL, capture_output=True, **options)
        self.assertEqual(done.returncode, status, f"{command}\n{done.stdout}\n{done.stderr}")
        return done

    def encap(self, *arguments, **options):
        return self.run_program(ENCAP, "icon", *arguments, **options)

    def path(self, name):
        return self.folder / name

    def pixels(self, image):
        """What ImageMagick reads; an image of a file is named "a.ico[2]"."""
        return self.run_program("convert", self.path(image), "-depth", "8", "rgba:-").stdout

    def write_png(self, name, pixels, size):
        raw = self.path("raw.rgba")
        raw.write_bytes(pixels)
        self.run_program("convert", "-size", f"{size[0]}x{size[1]}", "-depth", "8", f"rgba:{raw}",
                         f"png32:{self.path(name)}")
        return self.path(name)

    def write_pictures(self):
        """A PNG file for each depth, and "png"."""
        for bits, picture in PICTURES.items():
            self.write_png(f"{bits}.png", draw(picture, SIZES[bits]), SIZES[bits])
        self.write_png("png.png", draw(glass, PNG_SIZE), PNG_SIZE)

    def assert_same(self, got, picture, size, note):
        self.assertEqual(seen(got), seen(draw(picture, size)), note)


class IcoFiles(ProgramTest):
    def test_ours_are_read_by_others(self):
        self.need("icotool", "convert")
        self.write_pictures()
        parts = []
        for bits in PICTURES:
            parts.append(self.path(f"{bits}.ico"))
            source = self.path(f"{bits}.png")
            self.encap("convert", source, "--bits", bits, "--form", "bmp", "-o", parts[-1])
        self.encap("build", *parts, self.path("png.png"), "-o", self.path("all.ico"))
        self.run_program("icotool", "-x", "-o", self.folder, self.path("all.ico"))
        listing = self.run_program("icotool", "-l", self.path("all.ico")).stdout.decode()
        images = [(bits, PICTURES[bits], SIZES[bits]) for bits in PICTURES]
        for number, (bits, picture, size) in enumerate([*images, (32, glass, PNG_SIZE)], 1):
            tail = f"_{number}_{size[0]}x{size[1]}x{bits}.png"
            self.assertIn(f"--index={number} --width={size[0]} --height={size[1]} "
                          f"--bit-depth={bits} ", listing)
            self.assert_same(self.pixels("all" + tail), picture, size, "icotool" + tail)
            self.assert_same(self.pixels(f"all.ico[{number - 1}]"), picture, size, "convert" + tail)
        # The PNG image is the file's, byte for byte.
        stored = images_of(self.path("all.ico").read_bytes())[-1][2]
        self.assertEqual(stored, self.path("png.png").read_bytes())

    def check_read(self, name, expected):
        listed = json.loads(self.encap("list", self.path(name), "--format", "json").stdout)
        images = listed["icons"][0]["images"]
        self.assertEqual(len(images), len(expected))
        for image, (bits, form, picture, size) in zip(images, expected):
            note = f"{name}, image {image['image']}"
            self.assertEqual((image["width"], image["height"]), size, note)
            self.assertEqual((image["bits"], image["form"]), (bits, form), note)
            self.encap("extract", self.path(name), "--image", image["image"], "-o",
                       self.path("out.png"))
            self.assert_same(self.pixels("out.png"), picture, size, note)
        self.encap("extract", self.path(name), "-o", self.path("copy.ico"))
        stored = images_of(self.path(name).read_bytes())
        self.assertEqual([s[2] for s in images_of(self.path("copy.ico").read_bytes())],
                         [s[2] for s in stored])

    def test_those_of_icotool_are_read(self):
        self.need("icotool", "convert")
        self.write_pictures()
        options = [part for bits in PICTURES for part in ("-b", bits, self.path(f"{bits}.png"))]
        self.run_program("icotool", "-c", "-o", self.path("a.ico"), *options,
                         "-r", self.path("png.png"))
        self.check_read("a.ico", [(bits, "bmp", PICTURES[bits], SIZES[bits]) for bits in PICTURES]
                        + [(32, "png", glass, PNG_SIZE)])

    def test_those_of_imagemagick_are_read(self):
        self.need("convert")
        size = (256, 256)
        self.write_pictures()
        self.write_png("large.png", draw(gradient, size), size)
        self.run_program("convert", self.path("32.png"), self.path("large.png"),
                         self.path("a.ico"))
        form = "png" if images_of(self.path("a.ico").read_bytes())[1][2][:4] == b"\x89PNG" else "bmp"
        self.check_read("a.ico", [(32, "bmp", glass, SIZES[32]), (32, form, gradient, size)])


class BmpFiles(ProgramTest):
    def test_go_both_ways(self):
        self.need("convert")
        self.write_pictures()
        for bits, picture in PICTURES.items():
            expected = opaque(seen(draw(picture, SIZES[bits])))
            source, bmp = self.path(f"{bits}.ico"), self.path(f"{bits}.bmp")
            # ImageMagick takes the fourth byte of a pixel for alpha at times.
            depth = min(bits, 24)
            self.encap("convert", self.path(f"{bits}.png"), "--bits", depth, "-o", source)
            self.encap("extract", source, "-o", bmp)
            self.assertEqual(self.pixels(bmp.name), expected, f"{bits} bits")
            self.run_program("convert", bmp, "-alpha", "off", "-compress", "none",
                             "BMP3:" + str(self.path("b.bmp")))
            for other in (bmp, self.path("b.bmp")):
                self.encap("convert", other, "-o", self.path("back.png"))
                self.assertEqual(self.pixels("back.png"), self.pixels(bmp.name), f"{bits} bits")
        # A header of 124 bytes, with channel masks.
        self.run_program("convert", self.path("32.png"), self.path("long.bmp"))
        self.assertEqual(self.path("long.bmp").read_bytes()[14], 124)
        self.encap("convert", self.path("long.bmp"), "-o", self.path("back.png"))
        self.assertEqual(self.pixels("back.png"), opaque(draw(glass, SIZES[32])))


class Executables(ProgramTest):
    def check(self, target):
        self.need("icotool", "convert", "wrestool", f"{target}-windres", f"{target}-ld")
        self.write_pictures()
        for name, sources in (("main", ["1", "4", "8", "png"]), ("other", ["24", "32"])):
            options = [part for source in sources for part in
                       (["-b", source] if source != "png" else ["-r"])
                       + [self.path(f"{source}.png")]]
            self.run_program("icotool", "-c", "-o", self.path(f"{name}.ico"), *options)
        self.path("a.rc").write_text('ZEBRA ICON "main.ico"\n42 ICON "other.ico"\n'
                                     'Alpha ICON "other.ico"\nNOTE RCDATA { "no icon" }\n')
        # The script needs no preprocessor, and the one of the target comes with its compiler.
        self.run_program(f"{target}-windres", "--preprocessor=cat", "a.rc", "a.o",
                         cwd=self.folder)
        self.run_program(f"{target}-ld", "-shared", "--entry=0", "-s", "-o", "a.dll", "a.o",
                         cwd=self.folder)
        listing = self.run_program("wrestool", "-l", "-t", "14", self.path("a.dll")).stdout
        names = [line.split("--name=")[1].split()[0].strip("'")
                 for line in listing.decode().splitlines()]
        icons = json.loads(self.encap("list", self.path("a.dll"), "--format", "json").stdout)
        self.assertEqual([icon["name"].lstrip("#") for icon in icons["icons"]], names)
        self.assertEqual(len(names), 3)
        for icon in icons["icons"]:
            name = icon["name"]
            self.run_program("wrestool", "-x", "-t", "14", f"--name={name.lstrip('#')}",
                             "-o", self.path("theirs.ico"), self.path("a.dll"))
            self.encap("extract", self.path("a.dll"), "--name", name, "-o", self.path("ours.ico"))
            theirs = images_of(self.path("theirs.ico").read_bytes())
            self.assertEqual(images_of(self.path("ours.ico").read_bytes()), theirs, name)
            self.assertEqual([(image["width"], image["height"]) for image in icon["images"]],
                             [(width, height) for width, height, _ in theirs], name)
            self.path("theirs.ico").unlink()

    def test_of_64_bits_are_read_as_wrestool_reads_them(self):
        self.check("x86_64-w64-mingw32")

    def test_of_32_bits_are_read_as_wrestool_reads_them(self):
        self.check("i686-w64-mingw32")


@contextmanager
def display():
    """A display of its own; its name."""
    server = subprocess.Popen(["Xvfb", "-displayfd", "1", "-screen", "0", "64x64x24",
                               "-nolisten", "tcp"],
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.DEVNULL)
    try:
        yield ":" + server.stdout.readline().decode().strip()
    finally:
        server.terminate()
        server.wait(SECONDS)
        server.stdout.close()


def environment(**changes):
    kept = {name: value for name, value in os.environ.items()
            if name not in ("DISPLAY", "WAYLAND_DISPLAY", "COLORTERM")}
    return {**kept, **changes}


class Clipboard(ProgramTest):
    def test_is_shared_with_xclip(self):
        self.need("convert", "Xvfb", "xclip")
        self.write_pictures()
        size = SIZES[24]
        xclip = ("xclip", "-selection", "clipboard", "-t")
        with display() as name:
            env = environment(DISPLAY=name)
            none = self.encap("paste", "-o", self.path("a.ico"), status=3, env=env)
            self.assertIn(b"there is no image of the type image/bmp", none.stderr)
            self.encap("convert", self.path("24.png"), "--bits", "24", "-o", self.path("a.ico"))
            self.encap("copy", self.path("a.ico"), env=env)
            targets = self.run_program(*xclip, "TARGETS", "-o", env=env).stdout
            self.assertIn(b"image/bmp", targets)
            bmp = self.run_program(*xclip, "image/bmp", "-o", env=env).stdout
            self.path("got.bmp").write_bytes(bmp)
            self.assertEqual(self.pixels("got.bmp"), opaque(seen(draw(gradient, size))))

            self.run_program("convert", self.path("8.png"), "BMP3:" + str(self.path("8.bmp")))
            # What xclip leaves in the background must not hold a stream of ours.
            subprocess.run([*xclip, "image/bmp", "-i", self.path("8.bmp")], env=env, check=True,
                           timeout=SECONDS, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            self.encap("paste", "-o", self.path("8.out.png"), env=env)
            self.assert_same(self.pixels("8.out.png"), cube, SIZES[8], "pasted")
            self.encap("paste", "--size", "16", "--bits", "4", "-o", self.path("b.ico"), env=env)
            image = json.loads(self.encap("list", self.path("b.ico"), "--format",
                                          "json").stdout)["icons"][0]["images"][0]
            self.assertEqual((image["width"], image["height"], image["bits"]), (16, 16, 4))
        gone = self.encap("copy", self.path("a.ico"), status=3, env=env)
        self.assertIn(b"the display cannot be reached", gone.stderr)

    def test_goes_through_wl_clipboard_on_wayland(self):
        self.need("convert")
        self.write_pictures()
        # In place of a compositor: programs that keep what they are given.
        programs = self.path("bin")
        programs.mkdir()
        for name, text in (("wl-copy", 'echo "$@" >"$KEPT.arguments"; cat >"$KEPT"'),
                           ("wl-paste", '[ "$*" = "--no-newline --type image/bmp" ] && cat "$KEPT"')):
            (programs / name).write_text(f"#!/bin/sh\n{text}\n")
            (programs / name).chmod(0o755)
        env = environment(WAYLAND_DISPLAY="wayland-9", KEPT=str(self.path("kept.bmp")),
                          PATH=f"{programs}:{os.environ['PATH']}")
        self.encap("copy", self.path("8.png"), env=env)
        self.assertEqual(self.path("kept.bmp.arguments").read_text(), "--type image/bmp\n")
        self.encap("paste", "-o", self.path("out.png"), env=env)
        self.assert_same(self.pixels("out.png"), cube, SIZES[8], "pasted")
        missing = environment(WAYLAND_DISPLAY="wayland-9", PATH=str(self.folder))
        lost = self.encap("copy", self.path("8.png"), status=3, env=missing)
        self.assertIn(b"wl-copy is needed and not installed", lost.stderr)
        lost = self.encap("paste", "-o", self.path("a.ico"), status=3, env=environment())
        self.assertIn(b"neither WAYLAND_DISPLAY nor DISPLAY is set", lost.stderr)


class Terminal(ProgramTest):
    def show(self, **variables):
        """The status of show on a terminal of its own, and what is written there."""
        reader, writer = pty.openpty()
        command = [ENCAP, "icon", "show", str(self.path("8.png"))]
        try:
            done = subprocess.run(command, stdin=subprocess.DEVNULL, stdout=writer, stderr=writer,
                                  env=environment(**variables), timeout=SECONDS, check=False)
        finally:
            os.close(writer)
        written = b""
        try:
            while piece := os.read(reader, 65536):
                written += piece
        except OSError:
            pass  # how a terminal's end shows
        os.close(reader)
        return done.returncode, written

    def test_draws_only_where_colours_are(self):
        self.need("convert")
        self.write_png("8.png", draw(cube, (3, 2)), (3, 2))
        status, written = self.show(COLORTERM="truecolor")
        self.assertEqual(status, 0)
        self.assertTrue(written.startswith(b"\x1b[48;2;0;51;51m\x1b[38;2;0;0;0m\xe2\x96\x80"))
        status, written = self.show()
        self.assertEqual(status, 3)
        self.assertIn(b"COLORTERM is neither truecolor nor 24bit", written)
        piped = self.encap("show", self.path("8.png"), status=3,
                           env=environment(COLORTERM="truecolor"))
        self.assertIn(b"standard output is no terminal", piped.stderr)


if __name__ == "__main__":
    ENCAP = sys.argv.pop(1)
    outcome = unittest.main(verbosity=2, exit=False).result
    if outcome.testsRun == len(outcome.skipped):
        sys.exit(77)
    sys.exit(0 if outcome.wasSuccessful() else 1)
