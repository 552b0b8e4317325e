#!/usr/bin/env python3
"""Prints rows for the end of blocks.txt, with keys and blocks that the openssl command makes.

The keys are new in each run, so its rows replace all rows of an earlier one.
"""
import os
import re
import subprocess
import tempfile


def openssl(*arguments, stdin=None):
    return subprocess.run(["openssl", *arguments], input=stdin, capture_output=True, check=True).stdout


def blocks(bits, operation, cases):
    """A row for each case, which names the plain block and may add the modulus to In.

    The bare operation -decrypt takes the private key and -encrypt the public one; the row takes the other.
    """
    with tempfile.TemporaryDirectory() as folder:
        key = os.path.join(folder, "key.pem")
        openssl("genrsa", "-out", key, str(bits))
        text = openssl("rsa", "-in", key, "-noout", "-text").decode()
        modulus, private = (int(re.sub(r"[\s:]", "", re.search(name + r":([\s:0-9a-f]*)", text)[1]), 16)
                            for name in ("modulus", "privateExponent"))
        size, private_read = (bits + 7) // 8, operation == "-encrypt"
        message = int.from_bytes(bytes(1 + i * i % 251 for i in range(size - 1)), "little") % modulus
        plain = {"message": message, "zeros below": message >> 72 << 72, "below modulus": modulus - 1,
                 "zeros above": message % 256 ** (size // 2), "one": 1, "zero": 0}
        for case in cases:
            value = plain[case.removesuffix(" + modulus")]
            sealed = openssl("pkeyutl", operation, "-inkey", key, "-pkeyopt", "rsa_padding_mode:none",
                             stdin=value.to_bytes(size, "big"))
            sealed = int.from_bytes(sealed, "big") + modulus * case.endswith(" + modulus")
            length = value.bit_length()
            print(f"# {bits} bits, {'public' if private_read else 'private'} key at OpenSSL: {case}",
                  f"Op = Decrypt | Key = {modulus:X}h {private if private_read else 65537:X}h"
                  f" | In = {sealed.to_bytes(size, 'little').hex().upper()} | Bits = {length}"
                  f" | Out = {value.to_bytes((length + 7) // 8, 'little').hex().upper()}", sep="\n")


blocks(513, "-decrypt",
       ["message", "zeros below", "zeros above", "below modulus", "one", "zero", "message + modulus"])
blocks(1024, "-decrypt", ["zeros below"])
blocks(1031, "-decrypt", ["zeros above + modulus"])
blocks(4096, "-decrypt", ["message"])
blocks(512, "-encrypt", ["message", "zeros above"])
