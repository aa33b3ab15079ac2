# SPDX-License-Identifier: Apache-2.0
"""The files of a machine whose every text wants to be more than a text."""
from pathlib import Path

# Each of them sets window.hit where it is taken for HTML or for script.
PAYLOADS = (
    "<script>window.hit=1</script>",
    "</script><script>window.hit=2</script>",
    "<img src=x onerror=window.hit=3>",
    "<svg onload=window.hit=4>",
    "\"onmouseover=\"window.hit=5\" autofocus onfocus=\"window.hit=6\" x=\"",
    "'onfocus='window.hit=7' autofocus x='",
    "<!--<script>",
    "javascript:window.hit=8",
    "</title></style></noscript><script>window.hit=9</script>",
    "{{constructor.constructor('window.hit=10')()}}",
    "</textarea><iframe srcdoc='<script>parent.hit=11</script>'>",
)
BIDIRECTIONAL = "safe\u202egnp.exe\u202c\u2066x\u2069\u200f\ufeff"
CONTROLS = "a\0b\x1b[31mc\x7f\u009bd\u2028e"
LONG = "long <b>text</b> " * 65536  # more than a megabyte


def escaped(text):
    """A field of the table of mounts."""
    return "".join(f"\\{ord(c):03o}" if ord(c) <= 0x20 or c == "\\" else c for c in text)


def write(root):
    """Fills the folder, which must not exist yet."""
    texts = (*PAYLOADS, BIDIRECTIONAL, CONTROLS)
    files = {
        "etc/hostname": "host<script>window.hit=12</script>\n",
        "proc/sys/kernel/hostname": "host<script>window.hit=12</script>\n",
        "proc/sys/kernel/osrelease": PAYLOADS[1] + "\n",
        "proc/sys/kernel/ostype": "Linux\n",
        "proc/cmdline": " ".join(PAYLOADS) + "\n",
        "proc/loadavg": "0.1 0.2 0.3 1/2 3\n",
        "etc/os-release": f"ID=debian\nPRETTY_NAME='{PAYLOADS[4]}'\nVERSION_ID=\"{PAYLOADS[0]}\"\n",
        "etc/fstab": "\n",
        "proc/modules": "".join(
            f"{text.replace(' ', '')} 1 0 - Live 0x0\n" for text in PAYLOADS if "/" not in text),
        "proc/self/mountinfo": "".join(
            f"{i} 1 8:{i} / /{escaped(text)} rw - ext4 {escaped(text)} rw\n"
            for i, text in enumerate(texts, 20)),
        "var/lib/dpkg/status": "".join(
            f"Package: p{i}\nStatus: install ok installed\nArchitecture: all\n"
            f"Version: {text}\nDescription: {text}\nMaintainer: {text}\n\n"
            for i, text in enumerate((*texts, LONG))),
    }
    for name, text in files.items():
        file = Path(root, name)
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_bytes(text.encode())
    for i, text in enumerate(texts):
        chip = Path(root, f"sys/class/hwmon/hwmon{i}")
        chip.mkdir(parents=True)
        (chip / "name").write_bytes(text.encode() + b"\n")
        (chip / "temp1_input").write_text("41000\n")
        (chip / "temp1_label").write_bytes(text.encode() + b"\n")
