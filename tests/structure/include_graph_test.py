"""The sources keep to the include rules, and the checker of those rules finds each kind of offence."""

import os
import tempfile
import unittest
from pathlib import Path

from include_graph import violations


def broken_in(files):
    """Violations in a small tree given as {path: text}."""
    with tempfile.TemporaryDirectory() as root:
        for path, text in files.items():
            file = Path(root, path)
            file.parent.mkdir(parents=True, exist_ok=True)
            file.write_text(text, encoding="utf-8")
        return violations(root)


class IncludeGraph(unittest.TestCase):
    def test_of_this_project_has_no_violation(self):
        self.assertEqual([], violations(os.environ["ASSEMBLY_SOURCE_DIR"]))

    def test_may_point_downwards(self):
        self.assertEqual([], broken_in({
            "frame/host/var.h": "#include <string>\n",
            "graph/a.h": '#include "frame/host/var.h"\n',
            "services/s.cpp": '#include "graph/a.h"\n#include <vector>\n',
        }))

    def test_may_not_point_upwards(self):
        self.assertEqual(
            ["graph/a.cpp: graph may not include services (services/s.h)"],
            broken_in({"services/s.h": "", "graph/a.cpp": '#include "services/s.h"\n'}))

    def test_keeps_the_middle_layers_apart(self):
        self.assertEqual(
            ["utility/a.cpp: utility may not include product (product/p.h)"],
            broken_in({"product/p.h": "", "utility/a.cpp": '#include "product/p.h"\n'}))

    def test_keeps_the_engine_out_of_the_module(self):
        self.assertEqual(
            ["frame/entry.cpp: frame may not include engine (engine/e.h)"],
            broken_in({"engine/e.h": "", "frame/entry.cpp": '#include "engine/e.h"\n'}))

    def test_shows_the_engine_only_abstract_classes_of_the_graph(self):
        self.assertEqual(
            ["engine/e.cpp: engine knows abstract classes only, not graph/a_impl.h"],
            broken_in({"graph/a_impl.h": "", "graph/a.h": "",
                       "engine/e.cpp": '#include "graph/a.h"\n#include "graph/a_impl.h"\n'}))

    def test_keeps_the_higher_layers_out_of_the_engine(self):
        self.assertEqual(
            ["engine/e.cpp: engine may not include construction (construction/a.h)"],
            broken_in({"construction/a.h": "", "engine/e.cpp": '#include "construction/a.h"\n'}))

    def test_keeps_the_contract_free_of_everything_else(self):
        self.assertEqual(
            ["frame/host/var.h: frame/host may not include frame (frame/entry.h)"],
            broken_in({"frame/entry.h": "", "frame/host/var.h": '#include "frame/entry.h"\n'}))

    def test_keeps_foreign_libraries_out_of_the_module(self):
        self.assertEqual(
            ["graph/a.h: only the standard library may be included with <>, not <fmt/format.h>"],
            broken_in({"graph/a.h": "#include <fmt/format.h>\n"}))

    def test_keeps_implementations_out_of_tool_and_importers(self):
        self.assertEqual(
            ["importers/step/s.cpp: importers knows abstract classes only, not graph/a_impl.h",
             "tool/t.cpp: tool knows abstract classes only, not graph/a_impl.h"],
            broken_in({"graph/a_impl.h": "",
                       "importers/step/s.cpp": '#include "graph/a_impl.h"\n',
                       "tool/t.cpp": '#include "graph/a_impl.h"\n'}))

    def test_shows_the_tool_nothing_of_importers_but_their_limits(self):
        self.assertEqual(
            ["tool/t.cpp: tool may not include importers (importers/step/step_model.h)"],
            broken_in({"importers/step/step_limits.h": "", "importers/step/step_model.h": "",
                       "tool/t.cpp": '#include "importers/step/step_limits.h"\n'
                                     '#include "importers/step/step_model.h"\n'}))

    def test_starts_at_the_root(self):
        self.assertEqual(
            ['graph/b.h: "a.h" is no file; includes start at the root of the project'],
            broken_in({"graph/a.h": "", "graph/b.h": '#include "a.h"\n'}))

    def test_has_no_rings_of_headers(self):
        self.assertEqual(
            ["headers include each other: graph/a.h -> graph/b.h -> graph/a.h"],
            broken_in({"graph/a.h": '#include "graph/b.h"\n', "graph/b.h": '#include "graph/a.h"\n'}))


if __name__ == "__main__":
    unittest.main()
