"""Lets headless Chromium load the preview pages of `ulmira font subset`: both fonts have to load, and
the characters that it draws in both have to be the same to the pixel.

Usage: subset_browser_check.py ULMIRA. Ends with 77, and a line, where Chromium is not installed.
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

FOLDER = "/usr/share/fonts/truetype/"
LATIN = "Hamburgefonstiv \u00e9\u00e4\u00f1 \u03a9\u03bc\u03ad\u03b3\u03b1 \u041c\u0438\u0440 <&>"
CASES = [  # font, what to take, what the page has to say
    ("dejavu/DejaVuSans.ttf", ["--text", LATIN], ("loaded", "loaded", "equal")),
    ("freefont/FreeSerif.ttf", ["--text", LATIN], ("loaded", "loaded", "equal")),
    ("liberation/LiberationSans-Regular.ttf", ["--unicodes", "U+0020-052F"],
     ("loaded", "loaded", "equal")),
    ("wqy/wqy-microhei.ttc", ["--unicodes", "U+4E00-9C1F"], ("loaded", "loaded", "equal")),
    ("wqy/wqy-microhei.ttc", ["--face", "1", "--text", "\u6587\u6cc9\u9a7f"],
     ("loaded", "loaded", "equal")),
    # Not every page says so.
    ("dejavu/DejaVuSans.ttf", ["--text", LATIN, "--drop-os2"], ("refused", "loaded", None)),
]


def report(browser, page, profile):
    """data-subset, data-source and data-drawing of the page's root, as its script has left them."""
    run = subprocess.run(
        [browser, "--headless", "--no-sandbox", "--disable-gpu", "--user-data-dir=" + profile,
         "--virtual-time-budget=30000", "--dump-dom", pathlib.Path(page).as_uri()],
        capture_output=True, timeout=120, check=False)
    root = re.search(r"<html[^>]*>", run.stdout.decode("utf-8", "replace"))
    if root is None:
        raise RuntimeError("no page came back: " + run.stderr.decode("utf-8", "replace")[-500:])
    found = [re.search(rf'data-{name}="(\w+)"', root[0]) for name in ("subset", "source", "drawing")]
    return tuple(match and match[1] for match in found)


def main():
    browser = shutil.which("chromium") or shutil.which("chromium-browser")
    if browser is None:
        print("skipped: Chromium is not installed")
        return 77
    status = 0
    for font, taken, expected in CASES:
        if not os.path.exists(FOLDER + font):
            print(f"left out: {FOLDER + font} is not installed")
            continue
        with tempfile.TemporaryDirectory(ignore_cleanup_errors=True) as folder:
            page = os.path.join(folder, "a page.html")
            subprocess.run([sys.argv[1], "font", "subset", FOLDER + font, "-o",
                            os.path.join(folder, "out.ttf"), "--preview", page, *taken],
                           check=True, capture_output=True)
            said = report(browser, page, os.path.join(folder, "profile"))
        print("ok" if said == expected else f"FAILED: {said}, not {expected}:", font, *taken[:2])
        status |= said != expected
    return status


if __name__ == "__main__":
    sys.exit(main())
