"""What a run is asked: a data file that is there already gets its scheme and keeps the rest."""
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

# A run counts as below zero where a look or a snapshot saw such a cell.
simulator = runner.Simulator("", "HLL2")
for first_seen, lowest, counted in ((None, 0.0, 0), ({"time_s": 1.0}, 0.0, 1), (None, -1e-9, 2)):
    simulator.count_below_zero({"below_zero": {"first_seen": first_seen}}, lowest)
    assert simulator.below_zero == counted, (first_seen, lowest)
