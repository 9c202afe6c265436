#!/usr/bin/env python3
"""Plants known faults in a scratch copy of the tree, one at a time, and
records which tests catch each.

    tests/mutants/plant.py [--scratch DIR] [--only ID,ID] [--ref REV] [--out FILE]
    tests/mutants/plant.py --compare BEFORE.json AFTER.json   (a Markdown table)

The scratch copy (default build-mutants/tree, ignored by git) holds the
tracked files of this worktree and one build tree inside it that is reused,
so each fault costs one recompiled file and a test run. Laid out like a
worktree with its build/ folder, it shares the compiler cache with them. Faults come from faults.txt next to this
script; an entry whose text no longer matches is reported as stale rather
than silently skipped. Nothing in the worktree itself is changed.
"""

import argparse
import json
import os
import re
import subprocess
import sys
import time

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(os.path.dirname(HERE))


def parse_faults(path):
    faults = []
    current = None
    with open(path, encoding="utf-8") as f:
        for raw in f:
            line = raw.rstrip("\n")
            if line.startswith("@@ "):
                ident, file, what = (p.strip() for p in line[3:].split("|", 2))
                current = {"id": ident, "file": file, "what": what, "old": [], "new": []}
                faults.append(current)
            elif current and line.startswith("-"):
                current["old"].append(line[1:])
            elif current and line.startswith("+"):
                current["new"].append(line[1:])
    for fault in faults:
        fault["old"] = "\n".join(fault["old"]) + "\n"
        fault["new"] = "\n".join(fault["new"]) + "\n"
    return faults


def run(cmd, **kw):
    return subprocess.run(cmd, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, **kw)


def sync_tree(src, ref):
    """Copies the tracked files into src: as committed at ref, or as they are
    on disk when ref is empty. Unchanged files are left alone, so the build
    stays incremental."""
    if ref:
        files = run(["git", "ls-tree", "-r", "--name-only", ref], cwd=ROOT).stdout.splitlines()
    else:
        files = run(["git", "ls-files", "--cached", "--others", "--exclude-standard"], cwd=ROOT).stdout.splitlines()
    for name in files:
        source = os.path.join(ROOT, name)
        target = os.path.join(src, name)
        if ref:
            data = subprocess.run(["git", "show", "%s:%s" % (ref, name)], cwd=ROOT, stdout=subprocess.PIPE).stdout
        elif not os.path.isfile(source):
            continue
        else:
            with open(source, "rb") as f:
                data = f.read()
        if os.path.isfile(target):
            with open(target, "rb") as f:
                if f.read() == data:
                    continue
        os.makedirs(os.path.dirname(target), exist_ok=True)
        with open(target, "wb") as f:
            f.write(data)


def configure(src, build):
    if os.path.exists(os.path.join(build, "build.ninja")):
        return
    launcher = ["-DCMAKE_CXX_COMPILER_LAUNCHER=ccache"] if run(["which", "ccache"]).returncode == 0 else []
    # Test programs need not relink when only the shared library changed.
    cmd = ["cmake", "-S", src, "-B", build, "-G", "Ninja", "-DMUXCORE_WERROR=ON",
           "-DCMAKE_LINK_DEPENDS_NO_SHARED=ON"] + launcher
    if run(cmd).returncode != 0:
        sys.exit("configure failed")


def build_tree(build, jobs):
    return run(["cmake", "--build", build, "-j", str(jobs)]).returncode == 0


# The tests that can see a fault in each folder: its own subsystem's, the
# fuzz replays, and whatever builds on it.
WATCHERS = {
    "src/core": "tst_core|fuzz_",
    "src/memory": "tst_(baserawtype|items|memorymap)|fuzz_",
    "src/device": "tst_(devicedescriptor|map)$",
    "src/topology": "tst_(deviceitem|devicescene|frontpanel)|fuzz_",
    "src/storage": "tst_(savesettings|filesystemcheck|storagefaults)|fuzz_",
    "src/ui": "tst_(devicemainwindow|trapvisual|printing|devicedescriptor)",
    "examples": "tst_(demohost|wires)",
}


def watchers(path):
    for folder, pattern in WATCHERS.items():
        if path.startswith(folder + "/"):
            return pattern
    return "."


def failing_tests(build, jobs, timeout, pattern="."):
    env = dict(os.environ, QT_QPA_PLATFORM="offscreen")
    out = run(["ctest", "--test-dir", build, "-j", str(jobs), "--timeout", str(timeout),
               "-R", pattern, "-E", "install_consumer"], env=env).stdout
    failed = re.findall(r"^\s*\d+ - (\S+) \(", out, re.M)
    return sorted(set(failed))


def compare(before_path, after_path):
    with open(before_path, encoding="utf-8") as f:
        before = {r["id"]: r for r in json.load(f)}
    with open(after_path, encoding="utf-8") as f:
        after = {r["id"]: r for r in json.load(f)}
    print("| Fault | What it breaks | Before | After |")
    print("|---|---|---|---|")
    for ident, old in before.items():
        new = after.get(ident, {"status": "not run"})
        cell = lambda r: r["status"] + (" (" + ", ".join(r["by"]) + ")" if r.get("by") else "")
        print("| %s | %s | %s | %s |" % (ident, old["what"], cell(old), cell(new)))
    count = lambda rs: sum(1 for r in rs if r["status"] == "caught")
    print("\nCaught: %d before, %d after, of %d." % (count(before.values()), count(after.values()), len(before)))


def main():
    if len(sys.argv) == 4 and sys.argv[1] == "--compare":
        compare(sys.argv[2], sys.argv[3])
        return
    ap = argparse.ArgumentParser()
    ap.add_argument("--scratch", default=os.path.join(ROOT, "build-mutants"))
    ap.add_argument("--faults", default=os.path.join(HERE, "faults.txt"))
    ap.add_argument("--only", default="")
    ap.add_argument("--out", default="")
    ap.add_argument("--jobs", type=int, default=2)
    ap.add_argument("--timeout", type=int, default=60)
    ap.add_argument("--ref", default="", help="take the tree as committed here instead of the worktree")
    args = ap.parse_args()

    src = os.path.join(args.scratch, "tree")
    build = os.path.join(src, "build")
    faults = parse_faults(args.faults)
    if args.only:
        wanted = set(args.only.split(","))
        faults = [f for f in faults if f["id"] in wanted]

    sync_tree(src, args.ref)
    configure(src, build)
    if not build_tree(build, args.jobs):
        sys.exit("the unchanged tree does not build")
    baseline = failing_tests(build, args.jobs, args.timeout)
    if baseline:
        print("already failing without faults:", ", ".join(baseline))

    results = []
    started = time.time()
    for fault in faults:
        path = os.path.join(src, fault["file"])
        with open(path, encoding="utf-8") as f:
            original = f.read()
        count = original.count(fault["old"])
        entry = {"id": fault["id"], "file": fault["file"], "what": fault["what"]}
        if count != 1:
            entry["status"] = "stale (text found %d times)" % count
        else:
            with open(path, "w", encoding="utf-8") as f:
                f.write(original.replace(fault["old"], fault["new"]))
            try:
                if not build_tree(build, args.jobs):
                    entry["status"] = "does not build"
                else:
                    failed = failing_tests(build, args.jobs, args.timeout, watchers(fault["file"]))
                    caught = [t for t in failed if t not in baseline]
                    entry["status"] = "caught" if caught else "missed"
                    entry["by"] = caught
            finally:
                with open(path, "w", encoding="utf-8") as f:
                    f.write(original)
        results.append(entry)
        print("%-28s %-8s %s" % (entry["id"], entry["status"], " ".join(entry.get("by", []))), flush=True)
    build_tree(build, args.jobs)

    caught = sum(1 for r in results if r["status"] == "caught")
    counted = sum(1 for r in results if r["status"] in ("caught", "missed"))
    print("caught %d of %d (%.0f s)" % (caught, counted, time.time() - started))
    if args.out:
        with open(args.out, "w", encoding="utf-8") as f:
            json.dump(results, f, indent=1)


if __name__ == "__main__":
    main()
