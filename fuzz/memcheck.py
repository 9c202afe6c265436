#!/usr/bin/env python3
"""Runs every test of a build tree under valgrind memcheck, one at a time.

Usage: fuzz/memcheck.py [BUILD_DIR]   (default: build; logs go to BUILD_DIR/memcheck/)

Not part of CI: the whole suite takes several minutes under valgrind. Qt's
regular-expression JIT is switched off, since valgrind cannot follow JIT code
and reports its reads as uninitialised.
"""
import json
import os
import subprocess
import sys
import time

build = os.path.abspath(sys.argv[1] if len(sys.argv) > 1 else "build")
here = os.path.dirname(os.path.abspath(__file__))
logs = os.path.join(build, "memcheck")
os.makedirs(logs, exist_ok=True)
tests = json.loads(subprocess.check_output(["ctest", "--test-dir", build, "--show-only=json-v1"]))["tests"]

failed = []
ran = 0
for test in tests:
    name, command = test["name"], test.get("command")
    if not command or not os.path.isfile(command[0]) or command[0].endswith("cmake"):
        continue
    env = dict(os.environ, QT_ENABLE_REGEXP_JIT="0")
    for prop in test.get("properties", []):
        if prop["name"] == "ENVIRONMENT":
            env.update(item.split("=", 1) for item in prop["value"])
    ran += 1
    log = os.path.join(logs, name + ".log")
    started = time.time()
    result = subprocess.run(
        ["valgrind", "--tool=memcheck", "--leak-check=full", "--show-leak-kinds=definite",
         "--errors-for-leak-kinds=definite", "--num-callers=40", "--gen-suppressions=all",
         "--suppressions=" + os.path.join(here, "valgrind.supp"), "--error-exitcode=99",
         "--log-file=" + log] + command,
        env=env, cwd=os.path.dirname(command[0]), stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    verdict = {0: "clean", 99: "REPORTS"}.get(result.returncode, "test failed (%d)" % result.returncode)
    print("%-32s %-18s %4d s" % (name, verdict, time.time() - started), flush=True)
    if result.returncode != 0:
        failed.append(name)

print("%d passed, %d failed" % (ran - len(failed), len(failed)))
sys.exit(1 if failed else 0)
