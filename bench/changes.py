"""A thousand changes of picture in a row on two monitors: what the program and the X server hold after each hundred."""
import ctypes
import os
import pathlib
import signal
import subprocess
import sys
import tempfile
import time

CHANGES = 1000
PICTURES = 8


class XResources:
    """Bytes of pixmaps in the server, and the number of its clients."""

    def __init__(self):
        self.x11 = ctypes.CDLL("libX11.so.6")
        self.xres = ctypes.CDLL("libXRes.so.1")
        self.x11.XOpenDisplay.restype = ctypes.c_void_p
        self.x11.XFree.argtypes = [ctypes.c_void_p]
        self.display = ctypes.c_void_p(self.x11.XOpenDisplay(None))

    def read(self):
        clients, count = ctypes.POINTER(ctypes.c_ulong)(), ctypes.c_int()
        self.xres.XResQueryClients(self.display, ctypes.byref(count), ctypes.byref(clients))
        total = 0
        for index in range(count.value):
            size = ctypes.c_ulong()
            self.xres.XResQueryClientPixmapBytes(
                self.display, ctypes.c_ulong(clients[2 * index]), ctypes.byref(size)
            )
            total += size.value
        self.x11.XFree(clients)
        return total / 1048576, count.value


def memory(pid, key):
    for line in pathlib.Path(f"/proc/{pid}/smaps_rollup").read_text().splitlines():
        if line.startswith(key + ":"):
            return int(line.split()[1]) / 1024
    raise KeyError(key)


def main():
    program = sys.argv[1]
    server = XResources()
    with tempfile.TemporaryDirectory() as folder:
        environment = dict(os.environ, XDG_DATA_HOME=folder, XDG_RUNTIME_DIR=folder)
        files = [f"{folder}/{number}.jpg" for number in range(PICTURES)]
        for number, file in enumerate(files):
            subprocess.run(["convert", "-size", "1600x1200", f"gradient:hsl({number * 45},200,100)-black", file], check=True)
        process = subprocess.Popen([program], env=environment, stderr=subprocess.DEVNULL)
        settings = pathlib.Path(folder, "Quillmar", "settings.json")
        while not settings.exists():
            time.sleep(0.02)
        print("changes  PSS MB  RSS MB  open files  pixmaps MB  X clients")
        for number in range(CHANGES + 1):
            if number % (CHANGES // 10) == 0:
                pixmaps, clients = server.read()
                descriptors = len(os.listdir(f"/proc/{process.pid}/fd"))
                pss, rss = memory(process.pid, "Pss"), memory(process.pid, "Rss")
                print(f"{number:7} {pss:7.1f} {rss:7.1f} {descriptors:11} {pixmaps:11.1f} {clients:10}", flush=True)
            command = [program, "wallpaper", "set", "all", "image", files[number % PICTURES]]
            subprocess.run(command, env=environment, stdout=subprocess.DEVNULL, check=True)
        process.send_signal(signal.SIGTERM)
        process.wait()


if __name__ == "__main__":
    main()
