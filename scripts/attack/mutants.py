"""Whether `quillmere-mesh check` judges mutated cases as the simulator does."""
import subprocess
import sys
from pathlib import Path

SCRIPT = Path(__file__).with_name("check_against_simulator.py")
CASES, MORE_CASES = 100, 1000
SEED = 11


def reason_to_leave_out(bin_folder):
    if not SCRIPT.exists():
        return f"{SCRIPT.name} is not there"
    if not (bin_folder / "quillmere-mesh").exists():
        return "quillmere-mesh is not built"
    return None


def agree(bin_folder, is_thorough, script=None):
    """Whether the two agree on all of the cases; says what became of them."""
    count = MORE_CASES if is_thorough else CASES
    command = [sys.executable, "-B", str(script or SCRIPT), str(bin_folder), str(count), str(SEED)]
    print(f"\ncheck against simulator, {count} mutated cases:", flush=True)
    return subprocess.run(command).returncode == 0
