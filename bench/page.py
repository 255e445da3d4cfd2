"""What the pages of measurements are made of."""
import os
import statistics
import subprocess


def output_of(command, **settings):
    environment = {**os.environ, **{name: str(value) for name, value in settings.items()}}
    return subprocess.run(command, env=environment, check=True, capture_output=True,
                          text=True).stdout


def table(head, rows):
    return "\n".join(["| " + " | ".join(head) + " |", "|" + "---|" * len(head)] +
                     ["| " + " | ".join(row) + " |" for row in rows])


def minimum_and_median(values):
    return f"{min(values):.1f} / {statistics.median(values):.1f}"


def machine():
    model = next((line.split(":")[1].strip() for line in open("/proc/cpuinfo")
                  if line.startswith("model name")), "unknown processor")
    compiler = output_of(["c++", "--version"]).splitlines()[0]
    flags = next((line for line in open("/proc/cpuinfo") if line.startswith("flags")), "")
    widest = next((isa for isa in ("avx512f", "avx2") if isa in flags), "baseline")
    load = os.getloadavg()[0]
    return (f"{os.cpu_count()} cores ({model}, {widest}), {compiler}; load average of the last minute "
            f"before the measurements {load:.1f}")


def shown(part):
    """The part, which is printed as soon as it is measured."""
    print(part, flush=True)
    return part
