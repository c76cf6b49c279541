"""A computer of its own for tests: Debian with systemd in QEMU, on a copy of its disk that is forgotten at the end."""
import base64
import os
import re
import shutil
import socket
import subprocess
import tempfile
import time

LIMIT = 300  # seconds for what is a matter of some, on a busy computer that emulates another one
HOOKS = "/usr/lib/systemd/system-sleep"
LIFE = 2400  # seconds for all; what comes after that fails at once


def accelerator():
    """KVM with the processor's help: where it makes do without, it is there, boots a kernel half and stops."""
    with open("/proc/cpuinfo") as file:
        helps = re.search(r"^flags\b.*\b(vmx|svm)\b", file.read(), re.MULTILINE)
    return "kvm" if helps and os.access("/dev/kvm", os.W_OK) else "tcg"


class Machine:
    def __init__(self, image, payload):
        """Boots. What lies in the folder `payload` is found in /payload."""
        self.place = tempfile.mkdtemp()
        self.number = 0
        self.left = b""
        disk = f"{self.place}/payload"
        subprocess.run(["mke2fs", "-q", "-t", "ext4", "-O", "^has_journal", "-d", payload, disk, "64M"], check=True,
                       stdout=subprocess.DEVNULL)
        self.end = time.monotonic() + LIFE
        self.log = open(f"{image}/console.log", "w+")
        self.process = subprocess.Popen(
            ["qemu-system-x86_64", "-M", "pc", "-m", "1024", "-accel", accelerator(), "-display", "none", "-vga", "none",
             "-nodefaults", "-net", "none", "-no-shutdown", "-rtc", "base=utc", "-global", "PIIX4_PM.disable_s3=0",
             "-kernel", f"{image}/vmlinuz", "-initrd", f"{image}/initrd",
             "-append", "console=ttyS0 quiet no_console_suspend mitigations=off no_timer_check",
             "-drive", f"file={image}/disk,format=raw,if=virtio,snapshot=on",
             "-drive", f"file={disk},format=raw,if=virtio,snapshot=on",
             "-serial", "stdio", "-serial", f"unix:{self.place}/serial,server=on,wait=off",
             "-monitor", f"unix:{self.place}/monitor,server=on,wait=off"],
            stdin=subprocess.DEVNULL, stdout=self.log, stderr=self.log)
        self.serial = self._connect("serial")
        self._monitor = self._connect("monitor")
        self.booted()

    def booted(self):
        """Returns when the guest is up, after its start and after each one that follows."""
        while self._line(self._deadline(LIMIT)) != "ready":
            pass
        self.run("mkdir -p /payload && mount /dev/vdb /payload && (systemctl is-system-running --wait; true)", LIMIT)
        self.run(f"mkdir -p {HOOKS} && printf '#!/bin/sh\\n[ $1 = pre ] || echo awake > /dev/ttyS1\\n' > {HOOKS}/probe && "
                 f"chmod 755 {HOOKS}/probe")

    def wait_awake(self):
        """Returns when the guest has slept. What is sent before its driver is awake, too, blocks the port for good."""
        self.wait_state("suspended")
        while self._line(self._deadline(LIMIT)) != "awake":
            pass

    def start(self):
        """Of a machine that is off."""
        self.monitor("system_reset")
        self.monitor("cont")
        self.booted()

    def ask(self, command, limit=LIMIT):
        """Runs a command of the shell as root; answers with its status (124: not within the limit) and output."""
        self._send(command, limit)
        deadline = self._deadline(limit + 60)
        while True:
            number, _, rest = self._line(deadline).partition(" ")
            if number == str(self.number):  # others belong to questions that were given up
                status, _, output = rest.partition(" ")
                return int(status), base64.b64decode(output).decode(errors="replace").strip()

    def run(self, command, limit=LIMIT):
        """Answers with the output of a command that must succeed."""
        status, output = self.ask(command, limit)
        if status:
            raise AssertionError(f"{command}: status {status}\n{output}")
        return output

    def wait(self, command, limit=LIMIT):
        """Returns when the command succeeds, with its output."""
        return self.run(f"until output=$({command} 2> /dev/null); do sleep 0.2; done; echo \"$output\"", limit)

    def monitor(self, command):
        """What QEMU's monitor answers."""
        self._monitor.sendall(f"{command}\n".encode())
        answer = b""
        while not answer.endswith(b"\n(qemu) "):
            answer += self._monitor.recv(4096)
        return answer.decode().partition("\n")[2].rpartition("\n")[0].strip()

    def wait_state(self, state, limit=LIMIT):
        """Returns when the machine is "running", "suspended", or off: "shutdown"."""
        deadline = self._deadline(limit)
        while not (now := self.monitor("info status")).endswith(f"({state})") and now != f"VM status: {state}":
            if time.monotonic() > deadline:
                raise AssertionError(f"the machine is not {state}: {now}")
            time.sleep(0.5)

    def cmos(self, register):
        """A register of the real-time clock; of a machine that is off, too."""
        self.monitor(f"o /b 0x70 {register:#x}")
        return int(self.monitor("i /b 0x71").split("=")[1], 16)

    def close(self):
        self.process.kill()
        self.process.wait()
        self.serial.close()
        self._monitor.close()
        self.log.close()
        shutil.rmtree(self.place)

    def _deadline(self, limit):
        return min(time.monotonic() + limit, self.end)

    def _connect(self, name):
        client = socket.socket(socket.AF_UNIX)
        deadline = time.monotonic() + LIMIT
        while True:
            try:
                client.connect(f"{self.place}/{name}")
                client.settimeout(LIMIT)
                if name == "monitor":
                    while not client.recv(4096).endswith(b"(qemu) "):
                        pass
                return client
            except OSError:
                if self.process.poll() is not None or time.monotonic() > deadline:
                    self.log.seek(0)
                    raise RuntimeError(f"QEMU does not run: {self.log.read()}") from None
                time.sleep(0.1)

    def _send(self, command, limit):
        self.number += 1
        encoded = base64.b64encode(command.encode()).decode()
        self.serial.sendall(f"{self.number} {limit} {encoded}\n".encode())

    def _line(self, deadline):
        while b"\n" not in self.left:
            self.serial.settimeout(max(0.1, deadline - time.monotonic()))
            try:
                data = self.serial.recv(65536)
            except TimeoutError:
                raise AssertionError(f"the guest does not answer: {self.monitor('info status')}") from None
            if not data:
                raise AssertionError("QEMU has ended")
            self.left += data
        line, _, self.left = self.left.partition(b"\n")
        return line.decode(errors="replace").strip()
