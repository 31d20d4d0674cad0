#!/usr/bin/env python3
"""Keeps docs/names.md and the headers in step: each operation of the library listed once, under its whole name."""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
FOLDERS = ("core", "shared", "protocols", "sun", "wording", "updates", "system", "scripting")
ROW = re.compile(r"^\| (`[^`]+`|own) \| `([^`]+)` \| `([^`]+)` \|$")
NOT_OPERATIONS = {"static_assert", "operator", "requires", "decltype", "alignas"}


def without_comments(text):
    text = re.sub(r"//[^\n]*", "", text)
    text = re.sub(r'"(\\.|[^"\\])*"', '""', text)
    return re.sub(r"^\s*#.*$", "", text, flags=re.M)


def operations_of(text):
    """The names of the free functions and public member functions that a header declares."""
    names, scopes, statement = [], [], ""
    for character in without_comments(text):
        if character not in "{};:":
            statement += character
            continue
        if character == ":":
            access = re.search(r"\b(public|private|protected)\s*$", statement)
            if access and scopes:
                scopes[-1] = access[1]
                statement = ""
            else:
                statement += character
            continue
        visible = all(scope in ("namespace", "public") for scope in scopes)
        head = re.sub(r"\[\[.*?\]\]|<[^<>]*>", "", statement).strip()
        name = re.search(r"(~?\w+)\s*\(", head)
        if visible and name and name[1] not in NOT_OPERATIONS and " operator" not in head and \
                not head.startswith(("using", "extern", "inline constexpr", "friend", "}")) and "=" not in head[:name.start()]:
            names.append(name[1])
        if character == "{":
            kind = "body"
            if re.search(r"\bnamespace\b", statement):
                kind = "namespace"
            elif re.search(r"\bstruct\b", statement) and "(" not in head:
                kind = "public"
            elif re.search(r"\bclass\b", statement) and "(" not in head:
                kind = "private"
            scopes.append(kind)
        elif character == "}":
            scopes.pop()
        statement = ""
    return names


def main():
    faults, listed = [], {}
    for number, line in enumerate((ROOT / "docs/names.md").read_text().splitlines(), 1):
        row = ROW.match(line)
        if not row:
            continue
        whole, name, header = row[1].strip("`"), row[2], row[3]
        where = f"docs/names.md:{number}"
        if (header, name) in listed and listed[header, name] == whole:
            faults.append(f"{where}: {name} is listed twice")
        listed[header, name] = whole
        text = (ROOT / header).read_text() if (ROOT / header).is_file() else None
        if text is None:
            faults.append(f"{where}: there is no header {header}")
            continue
        if name not in operations_of(text):
            faults.append(f"{where}: {header} declares no {name}")
        if whole == "own":
            continue
        if not name.startswith(whole.split(":")[0]) and not (name[0].isupper() and whole.startswith("init")):
            faults.append(f"{where}: {name} does not begin with the first word of {whole}")
        if whole.rstrip(":") != name and not re.search(rf"^\s*// .*`{re.escape(whole)}`", text, re.M):
            faults.append(f"{where}: no doc comment in {header} gives the whole name `{whole}`")
    for folder in FOLDERS:
        for header in sorted((ROOT / folder).rglob("*.h")):
            path = header.relative_to(ROOT).as_posix()
            for name in dict.fromkeys(operations_of(header.read_text())):
                # Types are CamelCase: what is called like one makes or destroys it.
                if (path, name) not in listed and not name[name.startswith("~")].isupper():
                    faults.append(f"{path}: {name} is not in docs/names.md")
    print("\n".join(faults) if faults else f"{len(listed)} operations are listed and declared")
    sys.exit(1 if faults else 0)


main()
