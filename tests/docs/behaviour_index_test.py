#!/usr/bin/env python3
"""Nothing exported stays untold: compares what the shared libraries export, what the public headers say about it
(Doxygen's XML) and docs/behaviour.md with each other. Prints every gap as one line; exits with 1 if there is any."""

import argparse
import pathlib
import re
import subprocess
import sys
import xml.etree.ElementTree as ElementTree

INDEX = "docs/behaviour.md"
FOREIGN_SCOPES = ("std", "tbb", "__gnu_cxx", "__cxxabiv1")
# What the compiler emits beside functions and variables.
GENERATED = ("vtable for ", "VTT for ", "typeinfo ", "guard variable ", "non-virtual thunk ", "virtual thunk ",
             "covariant return thunk ", "construction vtable ", "reference temporary ")
# What a line is demanded for where it stands outside classes.
TOLD_KINDS = ("function", "enum", "typedef", "variable")


class Declaration:
    """One declaration of a name in the public headers."""

    def __init__(self, kind, element, is_private, in_class, place):
        self.kind = kind
        self.is_private = is_private
        self.in_class = in_class
        self.place = place
        self.is_pure = element.get("virt") == "pure-virtual"
        self.is_documented = any("".join(element.find(tag).itertext()).strip()
                                 for tag in ("briefdescription", "detaileddescription")
                                 if element.find(tag) is not None)


class Reference:
    """The names that the public headers declare, with their declarations."""

    def __init__(self, folder):
        self.names = {}
        index = ElementTree.parse(folder / "index.xml").getroot()
        for entry in index.findall("compound"):
            if entry.get("kind") in ("class", "struct", "union", "namespace", "file"):
                self.read(ElementTree.parse(folder / (entry.get("refid") + ".xml")).find("compounddef"))

    def read(self, compound):
        kind = compound.get("kind")
        in_class = kind not in ("namespace", "file")
        is_private = compound.get("prot") == "private"
        name = compound.findtext("compoundname")
        if kind != "file":
            self.add(name, Declaration(kind, compound, is_private, in_class, place_of(compound)))
        for member in compound.iter("memberdef"):
            if member.get("kind") == "friend" and not member.findtext("argsstring"):
                continue  # a friend class
            member_name = member.findtext("name")
            self.add(member_name if kind == "file" else name + "::" + member_name,
                     Declaration(member.get("kind"), member, is_private or member.get("prot") == "private",
                                 in_class, place_of(member)))

    def add(self, name, declaration):
        self.names.setdefault(name, []).append(declaration)

    def declarations(self, name):
        """What users see of a name."""
        return [each for each in self.names.get(name, []) if not each.is_private]

    def has(self, name):
        return bool(self.declarations(name))

    def is_class(self, name):
        return any(each.kind in ("class", "struct", "union") for each in self.names.get(name, []))


def place_of(element):
    location = element.find("location")
    return "?" if location is None else "{}:{}".format(location.get("file"), location.get("line"))


class Line:
    def __init__(self, number, names, promise, tests):
        self.number = number
        self.names = names
        self.promise = promise
        self.tests = tests


def bare_name(name):
    """Without the arguments that tell overloads apart."""
    return re.fullmatch(r"(.*?operator\(\)|[^(]*)(\(.*\))?", name).group(1)


def read_index(path, gaps):
    lines = []
    for number, text in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        if not text.startswith("|") or re.fullmatch(r"[|\s:-]+", text) or text.startswith("| Name "):
            continue
        cells = [cell.strip() for cell in text.strip().strip("|").split("|")]
        if len(cells) != 3:
            gaps.append("{}:{}: {} cells instead of name, promise, tests".format(INDEX, number, len(cells)))
            continue
        lines.append(Line(number, re.findall(r"`([^`]+)`", cells[0]), cells[1],
                          re.findall(r"`([^`]+)`", cells[2])))
    return lines


def read_test_names(folder):
    names = set()
    for path in folder.rglob("*"):
        if path.suffix in (".cpp", ".h"):
            text = re.sub(r"//[^\n]*", "", path.read_text(encoding="utf-8"))
            for suite, test in re.findall(r"\b(?:TYPED_)?TEST(?:_F|_P)?\(\s*(\w+)\s*,\s*(\w+)\s*\)", text):
                names.add(suite + "." + test)
        elif path.name == "CMakeLists.txt":
            text = re.sub(r"#[^\n]*", "", path.read_text(encoding="utf-8"))
            names.update(re.findall(r"\bzul_add_test\(\s*([\w-]+)", text))
            names.update(re.findall(r"\badd_test\(\s*NAME\s+([\w-]+)", text))
    return names


def without_templates(text):
    """Without template arguments."""
    while re.search(r"<[^<>]*>", text):
        text = re.sub(r"<[^<>]*>", "", text)
    return text


def split_symbol(symbol):
    """The name and the parameters of a demangled symbol."""
    text = re.sub(r"\[abi:\w+\]", "", symbol)
    text = re.sub(r"( const| volatile| &&?| \[clone [^]]*\])+$", "", text)
    parameters = ""
    if text.endswith(")"):
        depth = 0
        for position in range(len(text) - 1, -1, -1):
            depth += {")": 1, "(": -1}.get(text[position], 0)
            if depth == 0:
                text, parameters = text[:position], text[position + 1:-1]
                break
    head, *operator = re.split(r"\b(operator\b.*)", text, maxsplit=1)
    head = without_templates(head).rsplit(" ", 1)[-1]  # templates start with their result
    return head + "".join(operator), parameters


def outermost_scope(symbol):
    """Of the function or variable itself; of the function where it is a variable of one."""
    return without_templates(symbol).split("(")[0].rstrip().rsplit(" ", 1)[-1].split("::")[0]


def read_symbols(nm, library):
    """The demangled symbols of our own that a library exports."""
    output = subprocess.run([nm, "-D", "--defined-only", "-C", library], check=True, capture_output=True,
                            text=True).stdout
    symbols = set()
    for line in output.splitlines():
        symbol = re.fullmatch(r"[0-9a-f]*\s+\S\s+(.*)", line).group(1)
        if symbol.startswith(GENERATED) or symbol in ("_init", "_fini"):
            continue
        if outermost_scope(symbol) not in FOREIGN_SCOPES:
            symbols.add(symbol)
    return sorted(symbols)


def subject_of(symbol, reference):
    """The name that has to be told for a symbol: its own or that of its class."""
    name, parameters = split_symbol(symbol)
    scope, _, last = name.rpartition("::")
    if not scope:
        if not reference.has(name):
            for owner in re.findall(r"\bZUL\w+", parameters):
                if reference.has(owner + "::" + name):
                    return owner + "::" + name  # a friend
        return name
    # What is private, or belongs to a class that no public header defines, nobody can call: its class answers.
    hidden = None
    for end in range(len(scope.split("::")), 0, -1):
        outer = "::".join(scope.split("::")[:end])
        if not reference.has(outer):
            hidden = outer
    if hidden and reference.has(hidden.rpartition("::")[0]):
        return hidden.rpartition("::")[0]
    is_made_or_copied = last.lstrip("~") == scope.rpartition("::")[2] or (
        last == "operator=" and re.match(re.escape(scope) + r"( const)?\s*&", parameters))
    is_private = name in reference.names and not reference.has(name)
    return scope if is_made_or_copied or is_private else name


def check_symbols(libraries, nm, reference, told, gaps):
    for library in libraries:
        symbols = read_symbols(nm, library)
        if not symbols:
            gaps.append("{}: exports nothing".format(library))
        for symbol in symbols:
            check_symbol(symbol, pathlib.Path(library).name, reference, told, gaps)


def check_symbol(symbol, library, reference, told, gaps):
    name = subject_of(symbol, reference)
    declarations = reference.declarations(name)
    if not declarations:
        gaps.append("{}: exported by {}, not declared in any public header".format(symbol, library))
        return
    if name not in told:
        gaps.append("{}: no line in {}".format(name, INDEX))
    for declaration in declarations:
        if not declaration.is_documented:
            gaps.append("{}: no docstring at {}".format(name, declaration.place))


def check_declarations(reference, told, gaps):
    """What is inline or purely virtual is exported by no library, but by the headers."""
    for name in reference.names:
        declarations = reference.declarations(name)
        if not declarations:
            continue
        declaration = declarations[0]
        if reference.is_class(name):
            if not any("::".join(name.split("::")[:end]) in told for end in range(1, name.count("::") + 2)):
                gaps.append("{}: no line in {}".format(name, INDEX))
            if not declaration.is_documented:
                gaps.append("{}: no docstring at {}".format(name, declaration.place))
            continue
        is_pure = any(each.is_pure for each in declarations)
        if declaration.kind in TOLD_KINDS and (is_pure or not declaration.in_class) and name not in told:
            gaps.append("{}: no line in {}".format(name, INDEX))
        gaps.extend("{}: no docstring at {}".format(name, each.place)
                    for each in declarations if each.is_pure and not each.is_documented)


def check_index(lines, reference, tests, gaps):
    seen = {}
    for line in lines:
        place = "{}:{}".format(INDEX, line.number)
        if not line.names or not line.promise or not line.tests:
            gaps.append("{}: lacks a name, a promise or a test".format(place))
        for name in line.names:
            if not reference.has(bare_name(name)):
                gaps.append("{}: {} does not exist in the public headers".format(place, name))
            if name in seen:
                gaps.append("{}: {} has a line already, {}".format(place, name, seen[name]))
            seen[name] = line.number
        for test in line.tests:
            if test not in tests:
                gaps.append("{}: there is no test {}".format(place, test))


def run_doxygen(doxygen, source, work, gaps):
    work.mkdir(parents=True, exist_ok=True)
    for old in (work / "xml").glob("*.xml"):
        old.unlink()
    settings = (source / "docs" / "Doxyfile").read_text(encoding="utf-8")
    settings += '\nOUTPUT_DIRECTORY = "{}"\nGENERATE_HTML = NO\nEXTRACT_PRIVATE = YES\n'.format(work)
    result = subprocess.run([doxygen, "-"], input=settings, cwd=source, check=True, capture_output=True, text=True)
    gaps.extend(line for line in result.stderr.splitlines() if line.strip())
    return Reference(work / "xml")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--source", required=True, type=pathlib.Path, help="root of the repository")
    parser.add_argument("--work", required=True, type=pathlib.Path, help="folder for Doxygen's output")
    parser.add_argument("--doxygen", default="doxygen")
    parser.add_argument("--nm", default="nm")
    parser.add_argument("libraries", nargs="+")
    options = parser.parse_args()

    gaps = []
    reference = run_doxygen(options.doxygen, options.source, options.work, gaps)
    lines = read_index(options.source / INDEX, gaps)
    told = {bare_name(name) for line in lines for name in line.names}
    check_symbols(options.libraries, options.nm, reference, told, gaps)
    check_declarations(reference, told, gaps)
    check_index(lines, reference, read_test_names(options.source / "tests"), gaps)
    for gap in dict.fromkeys(gaps):
        print(gap)
    print("lines: {}, gaps: {}".format(len(lines), len(dict.fromkeys(gaps))))
    return 1 if gaps else 0


if __name__ == "__main__":
    sys.exit(main())
