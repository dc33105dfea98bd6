"""A VNC viewer as far as the tests need one: RFB 3.8 with a password, keys, and the pointer."""

import socket
import struct
import subprocess

KEYS = {"Return": 0xFF0D, "Escape": 0xFF1B, "Tab": 0xFF09, "Down": 0xFF54, "Alt": 0xFFE9, "F4": 0xFFC1}
VNC_AUTHENTICATION = 2


class Refused(Exception):
    pass


def answer(challenge, password):
    """The challenge under DES; its key is the password with the bits of each byte turned round."""
    key = bytes(int(f"{byte:08b}"[::-1], 2) for byte in password.encode().ljust(8, b"\0")[:8])
    # Three rounds under one key are a single one, which OpenSSL has no more.
    done = subprocess.run(["openssl", "enc", "-des-ede3", "-nopad", "-K", (key * 3).hex()], input=challenge,
                          capture_output=True, check=True)
    return done.stdout


class Viewer:
    def __init__(self, port, password, host="127.0.0.1"):
        self.socket = socket.create_connection((host, port), 10)
        try:
            self.shake_hands(password)
        except BaseException:
            self.close()
            raise

    def shake_hands(self, password):
        assert self.read(12).startswith(b"RFB 003.")
        self.socket.sendall(b"RFB 003.008\n")
        offered = self.read(self.read(1)[0])
        if VNC_AUTHENTICATION not in offered:
            raise Refused(f"the server offers the security types {list(offered)}")
        self.socket.sendall(bytes([VNC_AUTHENTICATION]))
        self.socket.sendall(answer(self.read(16), password))
        (refused,) = struct.unpack(">I", self.read(4))
        if refused:
            raise Refused(self.read(*struct.unpack(">I", self.read(4))).decode())
        self.socket.sendall(b"\1")  # beside other viewers
        self.width, self.height = struct.unpack(">HH", self.read(20)[:4])
        self.read(*struct.unpack(">I", self.read(4)))

    def read(self, size):
        got = b""
        while len(got) < size:
            part = self.socket.recv(size - len(got))
            if not part:
                raise Refused("the server closed the connection")
            got += part
        return got

    def press(self, *names):
        """Presses the keys together and lets them go."""
        for down, order in ((1, names), (0, reversed(names))):
            for name in order:
                self.socket.sendall(struct.pack(">BBxxI", 4, down, KEYS.get(name) or ord(name)))

    def click(self, x, y):
        for buttons in (0, 1, 0):
            self.socket.sendall(struct.pack(">BBHH", 5, buttons, x, y))

    def close(self):
        self.socket.close()
