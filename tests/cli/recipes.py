"""Runs the recipes of docs/large-libraries.md on a small library and compares what they write.

    recipes.py ENCAP ROOT

ENCAP is the program, ROOT the repository. Ends with 77, for "skipped", without GNU parallel; the
lines for jq are run where jq is installed.
"""

import os
import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

SKIPPED = 77
FAMILIES = 19


def blocks_of(page):
    """The blocks marked "sh", by what tells them apart."""
    blocks = re.findall(r"^```sh\n(.*?)^```$", page.read_text(encoding="utf-8"), re.M | re.S)
    kinds = {"parallel": "parallel --jobs", "slurm": "#SBATCH", "jq": "jq -r", "library": "make_"}
    found = {}
    for kind, words in kinds.items():
        matching = [block for block in blocks if words in block]
        if len(matching) != 1:
            sys.exit(f"{page}: {len(matching)} blocks hold '{words}'")
        found[kind] = matching[0]
    return found


def run(text, folder, environment, status=0):
    done = subprocess.run(["bash", "-c", text], cwd=folder, env=environment, text=True,
                          capture_output=True, check=False)
    if done.returncode != status:
        sys.exit(f"status {done.returncode} instead of {status} of\n{text}\n{done.stdout}"
                 f"{done.stderr}")
    return done.stdout


def expect(got, wanted, what):
    if got != wanted:
        sys.exit(f"{what}:\n{got}\ninstead of\n{wanted}")


def check_parallel(block, folder, environment, wanted):
    run(block, folder, environment)
    expect((folder / "library.ndjson").read_text(), wanted, "the shards put together")
    # A family that is damaged fails one run of eight, and parallel says so.
    damaged = next((folder / "library").glob("families/*/*/family-000001.xml"))
    whole = damaged.read_bytes()
    damaged.write_bytes(whole[:2000])
    lines = block.splitlines(keepends=True)
    run("".join(lines[: next(i for i, line in enumerate(lines) if ":::" in line) + 1]), folder,
        environment, status=1)
    damaged.write_bytes(whole)
    statuses = [line.split("\t")[6] for line in (folder / "shards/jobs.log").open()][1:]
    expect(sorted(statuses), ["0"] * 7 + ["3"], "the statuses of the runs")


def check_slurm(block, folder, environment, wanted):
    shutil.rmtree(folder / "shards")
    (folder / "shards").mkdir()
    for task in range(1, 17):
        run(block, folder, {**environment, "SLURM_ARRAY_TASK_ID": str(task),
                            "SLURM_ARRAY_TASK_COUNT": "16", "SLURM_CPUS_PER_TASK": "2"})
    got = run("LC_ALL=C sort shards/*.ndjson", folder, environment)
    expect(got, wanted, "the jobs of the array put together")


def check_jq(block, folder, environment):
    run("encap batch library/toc.xml -o library.ndjson", folder, environment)
    answers = run(block, folder, environment).splitlines()
    # No family failed and no cell is wrong: the sum of the cells and the ten slowest remain.
    expect(answers[0], str(FAMILIES * 5 * 24), "the sum of the cells")
    expect(len(answers), 11, "the lines of jq")


def main():
    program, root = Path(sys.argv[1]).resolve(), Path(sys.argv[2]).resolve()
    if shutil.which("parallel") is None:
        print("GNU parallel is not installed")
        return SKIPPED
    blocks = blocks_of(root / "docs/large-libraries.md")
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        (folder / "bin").mkdir()
        (folder / "bin/encap").symlink_to(program)
        environment = {**os.environ, "PATH": f"{folder / 'bin'}:{os.environ['PATH']}",
                       "HOME": name, "PARALLEL_HOME": name}
        small = blocks["library"].replace("--families 2000 --members 100",
                                          f"--families {FAMILIES} --members 5")
        run(f"{root}/{small}", folder, environment)
        wanted = run("encap batch library/toc.xml --no-times", folder, environment)
        check_parallel(blocks["parallel"], folder, environment, wanted)
        check_slurm(blocks["slurm"], folder, environment, wanted)
        if shutil.which("jq") is not None:
            check_jq(blocks["jq"], folder, environment)
    return 0


if __name__ == "__main__":
    sys.exit(main())
