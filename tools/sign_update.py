#!/usr/bin/env python3
"""Signs a release for the list of versions, and writes the list's item for it.

usage: sign_update.py KEYFILE --public-key
       sign_update.py KEYFILE FILE URL VERSION [PAGE]

KEYFILE holds the 32 bytes of the makers' secret seed: keep it away from every machine that others reach. The first form
prints the value of the bundle key SUPublicEDKey, the second an <item> to stand in the <channel> of the list that
SUFeedURL names. Needs libsodium.
"""
import base64
import ctypes
import ctypes.util
import pathlib
import sys
from xml.sax.saxutils import escape, quoteattr


class Key:
    def __init__(self, seed):
        if len(seed) != 32:
            raise ValueError("the seed is not 32 bytes long")
        self.sodium = ctypes.CDLL(ctypes.util.find_library("sodium") or "libsodium.so.23")
        if self.sodium.sodium_init() < 0:
            raise OSError("libsodium does not start")
        self.public, self.secret = ctypes.create_string_buffer(32), ctypes.create_string_buffer(64)
        self.sodium.crypto_sign_seed_keypair(self.public, self.secret, seed)

    def public_text(self):
        return base64.b64encode(self.public.raw).decode()

    def signature_text(self, content):
        signature = ctypes.create_string_buffer(64)
        self.sodium.crypto_sign_detached(signature, None, content, ctypes.c_ulonglong(len(content)), self.secret)
        return base64.b64encode(signature.raw).decode()


def item(key, content, url, version, page=None):
    link = f"<link>{escape(page)}</link>" if page else ""
    return (
        f"<item><title>{escape(version)}</title>{link}"
        f"<sparkle:shortVersionString>{escape(version)}</sparkle:shortVersionString>"
        f'<enclosure url={quoteattr(url)} length="{len(content)}" type="application/octet-stream" sparkle:os="linux"'
        f' sparkle:edSignature="{key.signature_text(content)}"/></item>'
    )


def feed(*items):
    namespace = "http://www.andymatuschak.org/xml-namespaces/sparkle"
    return (
        f'<?xml version="1.0" encoding="utf-8"?>\n<rss version="2.0" xmlns:sparkle="{namespace}"><channel>'
        f"<title>Quillmar</title>{''.join(items)}</channel></rss>\n"
    )


def main():
    if len(sys.argv) == 3 and sys.argv[2] == "--public-key":
        print(Key(pathlib.Path(sys.argv[1]).read_bytes()).public_text())
    elif len(sys.argv) in (5, 6):
        key = Key(pathlib.Path(sys.argv[1]).read_bytes())
        print(item(key, pathlib.Path(sys.argv[2]).read_bytes(), *sys.argv[3:]))
    else:
        print(__doc__.strip(), file=sys.stderr)
        return 2
    return 0


if __name__ == "__main__":
    sys.exit(main())
