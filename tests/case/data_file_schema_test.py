"""The schema of the data file takes what runs take, and refuses slips: data_file_schema_test.py.

The environment names the folder of the programs in QUILLMERE_PROGRAMS.
"""
import copy
import glob
import json
import os
import re
import subprocess
import tempfile
import unittest

import jsonschema

FOLDER = os.environ["QUILLMERE_PROGRAMS"]
KINDS = {"text": ("string", 5), "file": ("string", 5), "number": ("number", "5"),
         "two numbers": ("array", [1]), "object": ("object", 5)}
SEDIMENTS = {"sediments mean grain diameter": 1e-3, "sediments density": 2.65,
             "sediments friction coefficient": 0.02, "sediments porosity": 0.4}
SQUARE = """ND 1 0 0 0
ND 2 1 0 0
ND 3 1 1 0
ND 4 0 1 0
E3T 1 1 2 3 1
E3T 2 1 3 4 1
"""


def schema():
    printed = subprocess.run([os.path.join(FOLDER, "quillmere"), "--schema"], check=True,
                             capture_output=True, text=True).stdout
    return json.loads(printed)


SCHEMA = schema()
VALIDATOR = jsonschema.Draft7Validator(SCHEMA)


def faults(document):
    return [error.message for error in VALIDATOR.iter_errors(document)]


def keys_of_manual():
    """The path, kind and default of every key in the table of the manual."""
    with open("docs/manual.md", encoding="utf-8") as file:
        rows = file.read().split("| key | kind | default | unit | meaning |\n")[1].split("\n\n")[0]
    fields = [[field.strip().replace("`", "") for field in row.split("|")[1:]]
              for row in rows.splitlines()[1:]]
    return {path: (kind, default) for path, kind, default, *_ in fields}


def keys_of_schema(section, path=""):
    for name, key in section.get("properties", {}).items():
        yield path + name, key
        yield from keys_of_schema(key, path + name + "/")


def at(document, path):
    """The object that holds the value of a path, and the value's name."""
    *sections, name = path.split("/")
    for section in sections:
        document = document.setdefault(section, {})
    return document, name


def document_of(choose):
    """A data file with the keys that are chosen by their path and default."""
    values = {"model/name": "Quillmere", "model/flux scheme": "LHLLC", "crs": "EPSG:32632",
              "epoch": "2026-05-01T06:00:00Z", "output/results precision": "double"}
    usual = {"text": "text", "file": "file.txt", "number": 0.5, "two numbers": [1, 2.5],
             "object": {}}
    document = {}
    for path, (kind, default) in keys_of_manual().items():
        if not choose(path, default):
            continue
        section, name = at(document, path)
        section[name] = copy.deepcopy(values.get(path, usual[kind]))
    return document


def smallest_document():
    return document_of(lambda path, default: default == "required" and "maxima" not in path)


def full_document(model):
    document = document_of(lambda path, default: "Bramsett" not in default or model == "Bramsett")
    document["model"]["name"] = model
    return document


class Schema(unittest.TestCase):
    def test_it_is_a_schema(self):
        jsonschema.Draft7Validator.check_schema(SCHEMA)

    def test_it_lies_beside_the_programs(self):
        with open(os.path.join(FOLDER, "../share/quillmere/quillmere.schema.json"),
                  encoding="utf-8") as file:
            self.assertEqual(json.load(file), SCHEMA)

    def test_it_has_the_keys_of_the_manual_with_their_types_and_defaults(self):
        manual = keys_of_manual()
        found = dict(keys_of_schema(SCHEMA))
        self.assertEqual(set(found), set(manual))
        self.assertGreater(len(manual), 40)
        for path, (kind, default) in manual.items():
            self.assertEqual(found[path]["type"], KINDS[kind][0], path)
            self.assertTrue(found[path]["description"], path)
            if kind == "number" and not default.startswith("required"):
                self.assertEqual(found[path]["default"], float(default), path)

    def test_it_takes_the_smallest_and_the_fullest_documents(self):
        for document in (smallest_document(), full_document("Quillmere"),
                         full_document("Bramsett")):
            self.assertEqual(faults(document), [])

    def test_it_refuses_a_wrong_type_of_every_key(self):
        for path, (kind, _) in keys_of_manual().items():
            document = full_document("Bramsett")
            section, name = at(document, path)
            section[name] = KINDS[kind][1]
            self.assertTrue(faults(document), path)

    def test_it_refuses_a_misspelt_key_everywhere_but_in_what_is_kept_for_later(self):
        for path in keys_of_manual():
            document = full_document("Bramsett")
            section, name = at(document, path)
            section[name + "s"] = section[name]
            self.assertTrue(faults(document), path)
        document = full_document("Bramsett")
        document["extensions"]["anything"] = 1
        self.assertEqual(faults(document), [])

    def test_it_refuses_the_absence_of_exactly_the_keys_that_are_needed(self):
        for path, (_, default) in keys_of_manual().items():
            document = full_document("Bramsett")
            section, name = at(document, path)
            del section[name]
            self.assertEqual(bool(faults(document)), default.startswith("required"), path)

    def test_a_model_without_sediments_needs_none_of_their_keys(self):
        document = full_document("Quillmere")
        self.assertNotIn("parameters", document["model"])
        self.assertEqual(faults(document), [])
        document["model"]["name"] = "Bramsett"
        self.assertTrue(faults(document))

    def test_it_refuses_values_that_runs_refuse(self):
        for path, value in (("model/name", "SWE"), ("model/flux scheme", "HLL3"), ("crs", "32632"),
                            ("epoch", "tomorrow"), ("output/results precision", "half"),
                            ("output/final state", ""), ("output/results", ""),
                            ("output/maxima of flow/file", ""), ("model/flux scheme", "HLL2"),
                            ("output/maxima of flow/arrival depth", -1), ("mesh/origin", [1, 2, 3]),
                            ("model/parameters/sediments porosity", 1)):
            document = full_document("Bramsett")
            section, name = at(document, path)
            section[name] = value
            self.assertTrue(faults(document), (path, value))

    def test_results_need_times(self):
        document = smallest_document()
        document["output"]["results"] = "results.nc"
        self.assertTrue(faults(document))
        for times in ("results times", "snapshots of flow"):
            timed = copy.deepcopy(document)
            timed["output"][times] = "times.txt"
            self.assertEqual(faults(timed), [])

    def test_it_takes_the_examples(self):
        names = glob.glob("examples/*/data.json")
        self.assertGreaterEqual(len(names), 4)
        for name in names:
            with open(name, encoding="utf-8") as file:
                self.assertEqual(faults(json.load(file)), [], name)

    @unittest.skipUnless(os.path.exists(os.path.join(FOLDER, "quillmere-mesh")), "no quillmere-mesh")
    def test_it_takes_imported_cases(self):
        rich = ["--epoch", "2026-05-01 06:00:00", "--crs", "EPSG:32632", "--origin", "0.5,0.5",
                "--zero-depth", "0.001", "--rain", "20mm/h"]
        sandy = ["--sediment", "1", "--grain-diameter", "0.001", "--bed", "0"]
        for options in ([], rich, sandy):
            with tempfile.TemporaryDirectory() as folder:
                with open(os.path.join(folder, "square.2dm"), "w", encoding="ascii") as file:
                    file.write("MESH2D\n" + SQUARE)
                subprocess.run([os.path.join(FOLDER, "quillmere-mesh"), "import", "square.2dm", "case",
                                "--friction", "0.03", *options], cwd=folder, check=True,
                               capture_output=True)
                with open(os.path.join(folder, "case", "data.json"), encoding="utf-8") as file:
                    self.assertEqual(faults(json.load(file)), [], options)


if __name__ == "__main__":
    unittest.main()
