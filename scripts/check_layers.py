#!/usr/bin/env python3
"""Checks every include against docs/layers.md: the rings, the allowed edges inside a ring, and who may touch the system."""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
PROGRAMS = ("tools", "examples", "tests", "bench", "fuzz")
SYSTEM_HEADERS = re.compile(
    r"^(unistd|spawn|poll|dirent|fcntl|signal|pthread|sched|termios|pwd|grp|netdb|syslog|dlfcn|ifaddrs|linux/.*|sys/.*"
    r"|net/.*|netinet/.*|arpa/.*)(\.h)?$")
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')


def read_rules():
    """The fenced block of docs/layers.md: `ring NAME: pattern …` from the ground up, and `edge FROM -> TO`."""
    text = (ROOT / "docs/layers.md").read_text()
    block = re.search(r"```layers\n(.*?)```", text, re.S)
    if not block:
        sys.exit("docs/layers.md: the block ```layers is missing")
    rings, edges = [], set()
    for line in block[1].splitlines():
        line = line.split("#")[0].strip()
        if line.startswith("ring "):
            name, patterns = line[5:].split(":")
            rings.append((name.strip(), patterns.split()))
        elif line.startswith("edge "):
            edges.add(tuple(part.strip() for part in line[5:].split("->")))
        elif line:
            sys.exit(f"docs/layers.md: cannot read '{line}'")
    return rings, edges


def module_of(path):
    """A header and its source are one module: wording/action_phrases."""
    return re.sub(r"\.(h|cpp)$", "", path)


def matches(module, pattern):
    return module == pattern or (pattern.endswith("/*") and module.startswith(pattern[:-1]))


def ring_of(module, rings):
    found = [(len(pattern), level) for level, (_, patterns) in enumerate(rings) for pattern in patterns
             if matches(module, pattern)]
    return max(found)[1] if found else None


def main():
    rings, edges = read_rules()
    faults, used = [], set()
    files = sorted(p for p in ROOT.rglob("*") if p.suffix in (".h", ".cpp") and "build" not in p.parts)
    for file in files:
        path = file.relative_to(ROOT).as_posix()
        is_program = path.startswith(PROGRAMS)
        module, level = module_of(path), None
        if not is_program:
            level = ring_of(module, rings)
            if level is None:
                faults.append(f"{path}:1: in no ring of docs/layers.md")
                continue
        for number, line in enumerate(file.read_text().splitlines(), 1):
            include = INCLUDE.match(line)
            if not include:
                continue
            target = include[2]
            if include[1] == "<":
                if SYSTEM_HEADERS.match(target) and not path.startswith(("platform/linux/", "examples/run_loop/", "tests/", "bench/",
                                                                             "fuzz/")):
                    faults.append(f"{path}:{number}: <{target}> belongs to platform/linux/ alone")
                continue
            if is_program or module_of(target) == module:
                continue
            target_module = module_of(target)
            target_level = ring_of(target_module, rings)
            if target_level is None:
                faults.append(f"{path}:{number}: \"{target}\" is not a header of the library")
            elif level == 0 and target_level == 0 or target_level < level:
                continue
            elif target_level == level and (module, target_module) in edges:
                used.add((module, target_module))
            else:
                faults.append(f"{path}:{number}: \"{target}\" is in {rings[target_level][0]}, this file in "
                              f"{rings[level][0]}; docs/layers.md allows no such edge")
    faults += [f"docs/layers.md: the edge {a} -> {b} is used nowhere" for a, b in sorted(edges - used)]
    print("\n".join(faults) if faults else f"{len(files)} files keep to their rings")
    sys.exit(1 if faults else 0)


main()
