"""The rules of who may include whom, and a checker for them.

violations(root) reads every source below `root` and gives one line of text per broken rule.
"""

import re
import sys
from pathlib import Path

LAYERS = ["graph", "construction", "product", "identifiers", "utility", "services", "operations", "frame"]
MIDDLE = ["product", "identifiers", "utility"]  # side by side: none of them includes another
CONTRACT = "frame/host"

STANDARD = {
    "algorithm", "any", "array", "atomic", "barrier", "bit", "bitset", "cassert", "cctype", "cerrno",
    "cfenv", "cfloat", "charconv", "chrono", "cinttypes", "climits", "clocale", "cmath", "compare",
    "complex", "concepts", "condition_variable", "coroutine", "csetjmp", "csignal", "cstdarg", "cstddef",
    "cstdint", "cstdio", "cstdlib", "cstring", "ctime", "cuchar", "cwchar", "cwctype", "deque",
    "exception", "execution", "filesystem", "format", "forward_list", "fstream", "functional", "future",
    "initializer_list", "iomanip", "ios", "iosfwd", "iostream", "istream", "iterator", "latch", "limits",
    "list", "locale", "map", "memory", "memory_resource", "mutex", "new", "numbers", "numeric",
    "optional", "ostream", "queue", "random", "ranges", "ratio", "regex", "scoped_allocator",
    "semaphore", "set", "shared_mutex", "source_location", "span", "sstream", "stack", "stdexcept",
    "stop_token", "streambuf", "string", "string_view", "strstream", "syncstream", "system_error",
    "thread", "tuple", "type_traits", "typeindex", "typeinfo", "unordered_map", "unordered_set",
    "utility", "valarray", "variant", "vector", "version",
}  # fmt: skip

INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*([<"])([^>"]+)[>"]', re.MULTILINE)


def area_of(path):
    """'frame/host/var.h' -> 'frame/host', 'graph/a.h' -> 'graph'."""
    return CONTRACT if path.startswith(CONTRACT + "/") else path.split("/", 1)[0]


def below(layer):
    """Layers that `layer` may include, itself too."""
    if layer in MIDDLE:
        return {"graph", "construction", layer}
    return set(LAYERS[: LAYERS.index(layer) + 1])


def allowed_areas(area):
    """Areas that a file of `area` may include, or None where everything goes (tests, benchmarks)."""
    if area == CONTRACT:
        return {CONTRACT}
    if area in LAYERS:
        return below(area) | {CONTRACT}
    if area == "engine":
        return {CONTRACT, "engine", "graph"}
    if area == "exchange":
        return {CONTRACT, "engine", "exchange", "graph", "product"}
    if area == "importers":
        return {CONTRACT, "importers", "graph", "construction"}
    if area == "exporters":
        return {CONTRACT, "engine", "exporters", "graph", "importers"}
    if area == "tool":
        return {CONTRACT, "tool", "engine", "exchange", "exporters"} | set(LAYERS)
    return None


def is_implementation(path):
    return path.endswith("_impl.h")


def broken_rule(path, kind, target, root):
    """What is wrong with one include, or None."""
    area = area_of(path)
    if kind == "<":
        if (area == CONTRACT or area in LAYERS) and target not in STANDARD:
            return f"only the standard library may be included with <>, not <{target}>"
        return None
    if not (root / target).is_file():
        return f'"{target}" is no file; includes start at the root of the project'
    allowed = allowed_areas(area)
    if allowed is None:
        return None
    if area == "tool" and re.fullmatch(r"importers/\w+/\w+_limits\.h", target):
        return None  # plain numbers, for printing
    if area_of(target) not in allowed:
        return f"{area} may not include {area_of(target)} ({target})"
    if area in ("engine", "exchange", "importers", "tool") and area_of(target) in LAYERS and is_implementation(target):
        return f"{area} knows abstract classes only, not {target}"
    return None


def sources(root):
    areas = [*LAYERS, "engine", "exchange", "exporters", "importers", "tool", "tests", "bench", "fuzz", "samples"]
    for area in areas:
        folder = root / area
        if folder.is_dir():
            yield from sorted(p for p in folder.rglob("*") if p.suffix in (".h", ".cpp"))


def includes_of(root):
    """path -> [(kind, target)], paths relative to `root`."""
    found = {}
    for source in sources(root):
        text = source.read_text(encoding="utf-8")
        found[source.relative_to(root).as_posix()] = INCLUDE.findall(text)
    return found


def header_cycles(graph):
    """Rings of headers, each given once as 'a.h -> b.h -> a.h'."""
    done, rings = set(), []
    for start in sorted(graph):
        if start in done:
            continue
        trail, pending = [start], [iter(graph[start])]
        while pending:
            target = next(pending[-1], None)
            if target is None:
                done.add(trail.pop())
                pending.pop()
            elif target in trail:
                rings.append(" -> ".join(trail[trail.index(target):] + [target]))
            elif target in graph and target not in done:
                trail.append(target)
                pending.append(iter(graph[target]))
    return rings


def violations(root):
    root = Path(root)
    found = includes_of(root)
    lines = []
    for path, includes in found.items():
        for kind, target in includes:
            rule = broken_rule(path, kind, target, root)
            if rule:
                lines.append(f"{path}: {rule}")
    headers = {
        path: [target for kind, target in includes if kind == '"' and target in found]
        for path, includes in found.items()
        if path.endswith(".h")
    }
    lines += [f"headers include each other: {ring}" for ring in header_cycles(headers)]
    return lines


if __name__ == "__main__":
    broken = violations(sys.argv[1] if len(sys.argv) > 1 else ".")
    print("\n".join(broken))
    sys.exit(1 if broken else 0)
