"""How each command of the documents is tried, or why it is not."""

import re
from dataclasses import dataclass, field

FRAME_LINE = "/usr/lib/quorvel/quorvel-frame-line"


@dataclass
class Try:
    """Runs the command, among the devices that it needs."""

    # What a scanner is given that stands at the port /dev/ttyUSB0 meanwhile; none without it.
    scanner: list[str] = field(default_factory=list)
    types: bool = False  # whether a scanner that types is at work meanwhile
    instead: tuple[str, str] = ("", "")  # part of the command, and what stands for it here
    ends: bool = True  # otherwise it is ended once `shows` has come
    code: int = 0
    shows: str = ""  # part of its output


@dataclass
class Leave:
    """The command is not run; its programs are looked up, and the shell reads it."""

    why: str


# It comes when somebody reads the port.
SCAN = ["4600051000057"]
CHANGES_USERS = "changes the users of the machine"
BUILDS = "builds the project anew, which CI does"

SCENARIOS = {
    # In the guides.
    "sudo apt install ./quorvel_*_i386.deb ./quorvel_*_amd64.deb ./quorvel-common_*_all.deb":
        Leave("installs packages, which are made for a release"),
    "sudo dpkg --add-architecture i386": Leave("changes what packages the machine takes"),
    "sudo apt update": Leave("asks the network"),
    "quorvel-host demo": Try(shows="4600051000057"),
    "quorvel-host demo --json": Try(shows='"data":"4600051000057"'),
    "quorvel-host list": Try(scanner=SCAN, shows="/dev/ttyUSB0"),
    "quorvel-host form": Try(shows="GSSymbolKey"),
    "quorvel-host form --xml": Try(shows="<Settings>"),
    "quorvel-host info": Try(shows="CardReaderDevice"),
    "quorvel-host test": Try(ends=False),
    "quorvel-host doctor --port 129": Try(scanner=SCAN),
    "quorvel-host doctor --port 129 --set Suffix=13": Try(scanner=SCAN, shows="ok: "),
    "quorvel-host doctor --port 130 --seconds 0": Try(code=1),
    "quorvel-host doctor --keyboard 'Handheld Scanner'": Try(types=True, shows="ok: "),
    "quorvel-host listen --port /dev/ttyUSB0 --count 1": Try(scanner=SCAN),
    "quorvel-host listen --port 129 --count 1 --json --set OutputDataType=2": Try(scanner=SCAN),
    "quorvel-host listen --port 129 --set Suffix=10 --set OutputDataType=2":
        Try(scanner=["--suffix", "10", *SCAN], ends=False, shows="NDYwMDA1MTAwMDA1Nw=="),
    "quorvel-host listen --keyboard 'Handheld Scanner' --window":
        Try(types=True, ends=False, shows="4600051000057"),
    "quorvel-host listen --port 129 --class CardReaderDevice"
    " --set EquipmentType=СчитывательМагнитныхКарт --set OutputDataType=2":
        Try(scanner=SCAN, ends=False, shows="ДанныеКартыBase64"),
    "quorvel-host32 listen --port 129": Try(scanner=SCAN, ends=False, shows="4600051000057"),
    "quorvel-host32 --library ./QuorvelNativeLin32.so info": Try(shows="CardReaderDevice"),
    "sudo quorvel-scanner serial --link /dev/ttyUSB0 4600051000057": Try(ends=False),
    "sudo quorvel-host listen --port 129 --count 1": Try(scanner=SCAN, shows="4600051000057"),
    "echo NDYwMDA1MTAwMDA1Nw== | base64 --decode": Try(),
    "echo z/Do4uXy | base64 --decode | iconv -f WINDOWS-1251 -t UTF-8": Try(),
    "udevadm info --query=property --name=/dev/ttyUSB0":
        Try(instead=("ttyUSB0", "null"), shows="DEVNAME=/dev/null"),
    "sudo udevadm trigger --action=change --subsystem-match=tty":
        Try(instead=("trigger", "trigger --dry-run")),
    "sudo adduser $USER dialout": Leave(CHANGES_USERS),
    f"sudo {FRAME_LINE} /dev/ttyUSB0":
        Try(scanner=["--line", "cooked", *SCAN],
            instead=(FRAME_LINE, "packaging/quorvel-frame-line")),
    f"sudo {FRAME_LINE} --end tab /dev/ttyUSB0":
        Try(scanner=["--line", "cooked", *SCAN],
            instead=(FRAME_LINE, "packaging/quorvel-frame-line")),

    # In the README.
    "build/lin32/quorvel-host demo": Try(shows="4600051000057"),
    "build/lin32/quorvel-host list": Try(scanner=SCAN, shows="/dev/ttyUSB0"),
    "build/lin32/quorvel-host listen --port 129":
        Try(scanner=SCAN, ends=False, shows="4600051000057"),
    "build/lin32/quorvel-host doctor --port 129": Try(scanner=SCAN, shows="ok: "),
    "build/lin32/quorvel-host test": Try(ends=False),
    "sudo packaging/quorvel-frame-line /dev/ttyUSB0": Try(scanner=["--line", "cooked", *SCAN]),

    # Commands that a text names without their arguments.
    "quorvel-host doctor": Try(instead=("doctor", "help doctor"), shows="doctor"),
    "quorvel-host listen": Try(instead=("listen", "help listen"), shows="listen"),

    # Of those who build the project.
    "sudo apt purge quorvel quorvel:i386 quorvel-common": Leave("there is nothing to remove"),
    "./install": Leave("of an archive, which is made for a release"),
    "./install --remove": Leave("of an archive, which is made for a release"),
    ".ci/run": Leave("runs these tests"),
    "cmake --preset lin32 -DBUILD_TESTING=ON": Leave(BUILDS),
    "cmake --build --preset lin32": Leave(BUILDS),
    "cmake --preset lin32 && cmake --build --preset lin32": Leave(BUILDS),
    "cmake --build --preset lin32 --target pictures": Leave("overwrites the pictures"),
    "cmake --install build/lin32 --prefix /usr/local":
        Leave("installs, which another test does to a folder of its own"),
    "sudo cmake --install build/lin32 --prefix /usr/local":
        Leave("installs, which another test does to a folder of its own"),
    "ctest --preset lin32": Leave("runs these tests"),
    "ctest --preset lin32 -R SerialFraming": Leave("runs tests that run anyway"),
    "ctest --preset lin32 -R valgrind": Leave("runs tests that run anyway"),
    "ctest --test-dir build/lin32 -R 'system.SerialEvents' -V":
        Leave("runs tests that run anyway"),
    "build/lin32/quorvel-scanner serial --link /dev/ttyUSB0 4600051000057 &":
        Try(instead=(" &", ""), ends=False),
    "gdb -ex 'set breakpoint pending on' -ex 'break quorvel::QuorvelNative::OnInput' -ex run"
    " --args build/lin32/quorvel-host listen --port 129": Leave("a debugger asks its user"),
    "gdb -p PID": Leave("a debugger asks its user"),
    "gdb HOST-PROGRAM core": Leave("a debugger asks its user"),
    "valgrind --fair-sched=yes --suppressions=tests/suppressions/valgrind.supp HOST ...":
        Leave("slow, and done by other tests"),
    "cmake --preset lin32 -B build/asan32 -DQUORVEL_SANITIZE=address,undefined": Leave(BUILDS),
    "cmake --build build/asan32 --target QuorvelNative": Leave(BUILDS),
    "LD_PRELOAD=$(g++ -m32 -print-file-name=libasan.so) build/lin32/quorvel-host"
    " --library build/asan32/QuorvelNativeLin32.so info":
        Leave("needs another build of the library"),
}


def scenario_of(text):
    """None for a command that nobody has thought of."""
    # These take minutes, or change the machine: their help tells whether they are there.
    script = re.match(r"scripts/[\w-]+", text)
    return Try(instead=(text, f"{script[0]} --help")) if script else SCENARIOS.get(text)
