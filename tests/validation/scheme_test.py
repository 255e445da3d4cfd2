"""A data file that is there already gets the scheme of a run, and keeps the rest."""
import json
import os
import tempfile

from validation import runner

with tempfile.TemporaryDirectory() as folder:
    name = os.path.join(folder, "data.json")
    with open(name, "w") as file:
        json.dump({"CFL": 0.9, "model": {"flux scheme": "LHLLC", "name": "Quillmere"}}, file)
    runner.ask_for_scheme(folder, "HLL2")
    with open(name) as file:
        data = json.load(file)
assert data == {"CFL": 0.9, "model": {"flux scheme": "HLL2", "name": "Quillmere"}}, data
