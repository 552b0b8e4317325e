"""Lets headless Chromium load the preview pages of `ulmira font subset`: both fonts have to load, and
the pages have to say what they draw alike and what not: the glyphs, and the text as it is shaped.

Usage: subset_browser_check.py ULMIRA. Ends with 77, and a line, where Chromium is not installed.
"""
import base64
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

FOLDER = "/usr/share/fonts/truetype/"
PLAIN = "Hi \u041c\u0438\u0440 <&> 123 \u00e9\u00e4\u00f1"  # without layout in DejaVu Sans
JOINED = "\u0633\u0644\u0627\u0645"
EQUAL = ("loaded", "loaded", "equal", "equal", "")
CASES = [  # font, what to take, what the page has to say of fonts, characters, text, and what differs
    ("dejavu/DejaVuSans.ttf", ["--text", PLAIN], EQUAL),
    ("dejavu/DejaVuSans.ttf", ["--text", f"{PLAIN} AVAST office\n{JOINED}\nHi"],
     ("loaded", "loaded", "equal", "different", f"AVAST|office|{JOINED}")),
    ("dejavu/DejaVuSans.ttf", ["--text", "W" * 3000 + " H" * 3000 + " AV"],
     ("loaded", "loaded", "equal", "different", "AV")),
    ("freefont/FreeSerif.ttf", ["--glyphs", "4-400"], EQUAL),
    ("dejavu/DejaVuSans.ttf", ["--woff2", "--text", PLAIN, "--unicodes", "41-5A"], EQUAL),
    ("liberation/LiberationSans-Regular.ttf", ["--unicodes", "U+0020-052F"], EQUAL),
    ("wqy/wqy-microhei.ttc", ["--unicodes", "U+4E00-55FF"], EQUAL),
    ("wqy/wqy-microhei.ttc", ["--face", "1", "--text", "\u6587\u6cc9\u9a7f"], EQUAL),
    # Other glyphs, in text and in a list, and a font that is refused.
    ("dejavu/DejaVuSans.ttf", ["--text", "Hi"],
     ("loaded", "loaded", "different", "different", "Hi"), "dejavu/DejaVuSans-ExtraLight.ttf"),
    ("dejavu/DejaVuSans.ttf", ["--unicodes", "U+0048,U+0069"],
     ("loaded", "loaded", "different", "different", "H|i"), "dejavu/DejaVuSans-ExtraLight.ttf"),
    ("dejavu/DejaVuSans.ttf", ["--text", PLAIN, "--drop-os2"], ("refused", "loaded", None, None, None)),
]


def report(browser, page, profile):
    """What the page's script has left in the data of its root."""
    run = subprocess.run(
        [browser, "--headless", "--no-sandbox", "--disable-gpu", "--user-data-dir=" + profile,
         "--virtual-time-budget=30000", "--dump-dom", pathlib.Path(page).as_uri()],
        capture_output=True, timeout=120, check=False)
    root = re.search(r"<html[^>]*>", run.stdout.decode("utf-8", "replace"))
    if root is None:
        raise RuntimeError("no page came back: " + run.stderr.decode("utf-8", "replace")[-500:])
    found = [re.search(rf'data-{name}="([^"]*)"', root[0])
             for name in ("subset", "source", "characters", "drawing", "differing")]
    return tuple(match and match[1] for match in found)


def subset(font, out, *arguments):
    subprocess.run([sys.argv[1], "font", "subset", FOLDER + font, "-o", out, *arguments],
                   check=True, capture_output=True)


def check(browser, folder, font, taken, other=None):
    """What the page says; with `other`, after the new font in it was exchanged for one of that font."""
    page, out = os.path.join(folder, "a page.html"), os.path.join(folder, "out.ttf")
    subset(font, out, "--preview", page, *taken)
    if other is not None:
        made = base64.b64encode(pathlib.Path(out).read_bytes())
        subset(other, out, *taken)
        text = pathlib.Path(page).read_bytes()
        assert made in text
        pathlib.Path(page).write_bytes(
            text.replace(made, base64.b64encode(pathlib.Path(out).read_bytes())))
    return report(browser, page, os.path.join(folder, "profile"))


def main():
    browser = shutil.which("chromium") or shutil.which("chromium-browser")
    if browser is None:
        print("skipped: Chromium is not installed")
        return 77
    status = 0
    for font, taken, expected, *other in CASES:
        if not os.path.exists(FOLDER + font):
            print(f"left out: {FOLDER + font} is not installed")
            continue
        with tempfile.TemporaryDirectory(ignore_cleanup_errors=True) as folder:
            try:
                said = check(browser, folder, font, taken, *other)
            except subprocess.CalledProcessError as error:
                if b"built" not in error.stderr:  # the message of a build without libwoff
                    raise
                print("left out:", error.stderr.decode().strip())
                continue
        print("ok" if said == expected else f"FAILED: {said}, not {expected}:", font,
              *(text[:40] for text in taken[:2]))
        status |= said != expected
    return status


if __name__ == "__main__":
    sys.exit(main())
