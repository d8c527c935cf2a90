#!/usr/bin/env python3
"""Lets each system call and each allocation of each command fail, and looks what comes of it.

usage: faults.py [--sample RUNS] [--only WORDS] [--groups GROUP,...] [--jobs N] [--seconds N]
                 [--folder FOLDER] PROGRAM INJECTOR

Calls on files of the program's own: the Nth of each group fails once, and from there on, by each
error of PLAN, for N from 1 until nothing is hit any more. Calls on fonts and files of the system,
and allocations: one for each stack that they come from (the first and the last of it).
--sample takes so many of these runs, the same ones each time. Prints each kind of finding once,
with the first run that has it; ends with 1 where there is one. --seconds ends it before all is
tried, and says so.
"""
import argparse
import collections
import concurrent.futures
import errno
import os
import random
import sys
import time

import campaign
import commands
from campaign import Fault

E = {name: str(getattr(errno, name)) for name in errno.errorcode.values()}
ONCE, ON = False, True
PLAN = {
    "open": [E["EACCES"], E["EMFILE"], E["EIO"], E["ENOSPC"], E["EINTR"]],
    "read": [E["EIO"], E["EINTR"], "short"],
    "write": [E["ENOSPC"], E["EIO"], E["EDQUOT"], E["EINTR"], "short"],
    "look": [E["EACCES"], E["EIO"]],
    "name": [E["ENOSPC"], E["EACCES"], E["EROFS"], E["EIO"]],
    "keep": [E["EIO"], E["ENOSPC"], E["EINTR"]],
    "map": [E["ENOMEM"]],
    "net": [E["ECONNRESET"], E["EINTR"], E["ETIMEDOUT"]],
    "thread": [E["EAGAIN"]],
}
# Of fonts and the system.
ASIDE_PLAN = {"open": [E["EACCES"], E["EMFILE"]], "read": [E["EIO"], "short"],
              "look": [E["EIO"]], "map": [E["ENOMEM"]]}
ASIDE_CASES = {"convert over svg", "cut over dxf", "cut a font file", "cut strokes", "faces",
               "faces as JSON", "measure", "contours", "upload"}

place = None


def open_place(program, injector):
    global place
    place = campaign.Place(program, injector, campaign.is_sanitized(program))


class Worlds(dict):
    """What each case makes without a fault, found out when it is first asked for."""

    def __missing__(self, name):
        self[name] = campaign.world_of(place, CASES[name])
        return self[name]


CASES = {case.name: case for case in commands.all_cases()}
worlds = Worlds()


def run_one(name, fault):
    """What came of it, its findings, and what a rule let go."""
    case, world = CASES[name], worlds[name]
    place.reset(case)
    ran = place.run(case, fault)
    server = place.server if case.sends else None
    findings = campaign.judge(case, world, ran, place.look(), server)
    if fault.on or ran.what.startswith(("unlink", "rmdir")):  # nothing could be removed
        findings = campaign.judge_again(place, case, world, findings)
    if fault.do == "short" and ran.hit and ran.status == 1 and not findings:
        findings = ["gave up: half of the bytes are no error"]
    let_go = collections.Counter({"calls in Fontconfig's lock": ran.kept} if ran.kept else {})
    let_go.update([ran.let_go] if ran.let_go else [])
    return ran, findings, let_go


def run_until_clear(name, group, do, on):
    """For N from 1 until nothing is hit. A program that hangs has shown it after three times."""
    runs, found, at, let_go = 0, [], 1, collections.Counter()
    while True:
        if sum(finding.startswith(("hang", "slow")) for *_, finding in found) == 3:
            return runs, let_go, found
        fault = Fault(group, at, do, on)
        ran, findings, more = run_one(name, fault)
        runs += 1
        let_go += more
        found += [(name, fault, ran, finding) for finding in findings]
        if not ran.hit:
            return runs, let_go, found
        at += 1


def run_list(name, group, faults):
    found, let_go = [], collections.Counter()
    for fault in faults:
        ran, findings, more = run_one(name, fault)
        let_go += more
        found += [(name, fault, ran, finding) for finding in findings]
    return len(faults), let_go, found


def run_series(job):
    try:
        return job[0](*job[1:])
    except BaseException as error:
        return 0, {}, [(job[1], job[2:4], campaign.Ran(0, b"", ""), f"campaign failed: {error!r}")]


def one_of_each_stack(name, group, of, known):
    """The numbers of the first and the last call of each stack that no case had before."""
    case = CASES[name]
    place.reset(case)
    ran = place.run(case, Fault(group, 0, "stacks", of=of))
    first, last = {}, {}
    for number, stack in enumerate(ran.stacks, 1):
        if stack and stack not in known:
            first.setdefault(stack, number)
            last[stack] = number
    known.update(first)
    return sorted(set(first.values()) | set(last.values()))


def is_there(name):
    """Whether the program has this command at all; an older one may not."""
    try:
        return bool(worlds[name])
    except SystemExit as problem:
        print(f"left out: {problem}", flush=True)
        return False


def modes(do):
    """A call that is interrupted each time is done again for ever, as it should be."""
    return (ONCE,) if do == E["EINTR"] else (ONCE, ON)


def all_jobs(names):
    jobs, known = [], collections.defaultdict(set)
    for name in names:
        for group, errors in PLAN.items():
            for do in errors:
                jobs += [(run_until_clear, name, group, do, on) for on in modes(do)]
        numbers = one_of_each_stack(name, "alloc", "own", known["alloc"])
        for on in (ONCE, ON):
            faults = [Fault("alloc", at, E["ENOMEM"], on) for at in numbers]
            jobs += [(run_list, name, "alloc", faults[i:i + 200]) for i in range(0, len(faults), 200)]
        for group, errors in ASIDE_PLAN.items() if name in ASIDE_CASES else ():
            numbers = one_of_each_stack(name, group, "aside", known[group])
            jobs += [(run_list, name, group, [Fault(group, at, do, on, "aside") for at in numbers])
                     for do in errors for on in modes(do) if numbers]
    return jobs


def sample_jobs(names, count):
    """The same runs each time, spread over all cases and groups."""
    chance, jobs = random.Random(15), []
    weights = {group: len(errors) for group, errors in PLAN.items()}
    for i in range(count):
        name = names[i % len(names)]
        own = {g: n for g, n in worlds[name].ran.own.items() if n}
        group = chance.choices(list(own), [weights.get(g, 4) for g in own])[0]
        do = chance.choice(PLAN.get(group, [E["ENOMEM"]]))
        fault = Fault(group, chance.randint(1, own[group]), do, chance.choice(modes(do)))
        jobs.append((run_list, name, group, [fault]))
    return jobs


def report(found):
    kinds = {}
    for name, fault, ran, finding in found:
        kinds.setdefault(finding, []).append((name, fault, ran))
    for finding, runs in sorted(kinds.items()):
        name, fault, ran = runs[0]
        calls = collections.Counter(f"{run.what} {os.path.basename(run.path)}".strip()
                                    for _, _, run in runs)
        print(f"FOUND {len(runs)} times: {finding}\n"
              f"    first: {name}; {fault}; {ran.what} {ran.path}\n"
              f"           status {ran.status}; {ran.err.strip()[:200]!r}\n"
              f"    calls: {dict(calls.most_common(6))}\n"
              f"    in: {', '.join(sorted({run[0] for run in runs}))[:300]}")
    return len(kinds)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--sample", type=int, default=0)
    parser.add_argument("--only", default="")
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("--groups", default="")
    parser.add_argument("--seconds", type=float, default=0)
    parser.add_argument("--folder")
    parser.add_argument("program")
    parser.add_argument("injector")
    options = parser.parse_args()
    campaign.scratch(options.folder)
    began = time.monotonic()
    setting = (os.path.abspath(options.program), os.path.abspath(options.injector))
    open_place(*setting)
    names = [name for name in CASES if options.only in name and is_there(name)]
    jobs = sample_jobs(names, options.sample) if options.sample else all_jobs(names)
    if options.groups:
        wanted = options.groups.split(",")
        jobs = [job for job in jobs if job[2] in wanted]
    place.close()
    random.Random(15).shuffle(jobs)  # a run that is cut has tried some of each
    runs, left, let_go, found, groups = 0, 0, collections.Counter(), [], collections.Counter()
    with concurrent.futures.ProcessPoolExecutor(options.jobs, initializer=open_place,
                                                initargs=setting) as pool:
        waiting = {pool.submit(run_series, job): job for job in jobs}
        for done, future in enumerate(concurrent.futures.as_completed(waiting), 1):
            job = waiting[future]
            if options.seconds and time.monotonic() - began > options.seconds:
                for other in waiting:
                    other.cancel()
            if future.cancelled():
                left += 1
                continue
            count, gone, more = future.result()
            if done * 20 // len(jobs) > (done - 1) * 20 // len(jobs):
                print(f"faults: {done * 100 // len(jobs)} %, {time.monotonic() - began:.0f} s, "
                      f"{len(found)} findings", file=sys.stderr, flush=True)
            runs += count
            let_go.update(gone)
            for kind in {finding for *_, finding in more} - {finding for *_, finding in found}:
                print(f"found: {kind} ({job[1]}, {job[2]})", file=sys.stderr, flush=True)
            found += more
            groups[job[2]] += count
    kinds = report(found)
    seconds = time.monotonic() - began
    print(f"faults: {len(names)} commands, {runs} runs ({dict(groups)}), let go: {dict(let_go)}, "
          f"{len(found)} findings of {kinds} kinds, {seconds:.0f} s")
    if left:
        print(f"cut: {left} of {len(jobs)} series were not begun")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
