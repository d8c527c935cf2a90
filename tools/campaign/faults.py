#!/usr/bin/env python3
"""Lets each system call and each allocation of each command fail, and looks what comes of it.

usage: faults.py [--sample RUNS] [--only WORDS] [--groups GROUP,...] [--jobs N] [--seconds N]
                 [--every K] [--journal FILE] [--folder FOLDER] PROGRAM INJECTOR

Calls on files of the program's own: the Nth of each group fails once, and from there on, by each
error of PLAN, for N from 1 until nothing is hit any more. Calls on fonts and files of the system,
and allocations: one for each stack that they come from (the first and the last of it).
--sample takes so many of these runs, the same ones each time. --only takes the cases whose names
hold one of its parts ("table|sheet"), --every each Kth call up to the end of each series, and each
Kth allocation. Prints each kind of finding once, with the first run that has it; ends with 1 where
there is one.

--seconds ends it before all is tried, and says so. With --journal each series that is done is noted
in FILE, and what stands there is not run again: so the whole is run in pieces, and the last one
reports of all. A journal belongs to one program; another one's is refused.
"""
import argparse
import collections
import concurrent.futures
import dataclasses
import errno
import hashlib
import itertools
import json
import os
import random
import sys
import time

import campaign
import commands
from campaign import Fault, Finding

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
# What the library is to tell from other failures.
MEMORY_PLAN = {group: [E["ENOMEM"]] for group in ("open", "read", "look")}
ASIDE_CASES = {"library over dxf", "library with strokes", "library, its lists",
               "convert over svg", "cut over dxf", "cut a font file", "cut strokes", "faces",
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
        if "cannot read file data" in ran.err:  # of a library that is opened at run time
            findings, ran.let_go = [], "half of a read by the loader of libraries"
    let_go = collections.Counter({"calls in Fontconfig's lock": ran.kept} if ran.kept else {})
    let_go.update([ran.let_go] if ran.let_go else [])
    return ran, findings, let_go


@dataclasses.dataclass
class Done:
    """What came of a series of runs."""
    runs: int = 0
    let_go: collections.Counter = dataclasses.field(default_factory=collections.Counter)
    found: list = dataclasses.field(default_factory=list)

    def add(self, name, fault):
        """One more run; whether something was hit."""
        ran, findings, let_go = run_one(name, fault)
        self.runs += 1
        self.let_go += let_go
        self.found += [Finding.of(name, fault, ran, what) for what in findings]
        return bool(ran.hit)

    def has_shown_it(self):
        """A program that hangs has shown it after three times."""
        return sum(one.what.startswith(("hang", "slow")) for one in self.found) >= 3


def run_until_clear(name, group, do, on, every):
    """Until nothing is hit, for each N, or each so many from one that the series' name gives."""
    done = Done()
    first = 1 + random.Random(f"{name} {group} {do} {on}").randrange(every)
    for at in itertools.count(first, every):
        if not done.add(name, Fault(group, at, do, on)) or done.has_shown_it():
            return done


def run_list(name, group, faults):
    done = Done()
    for fault in faults:
        done.add(name, fault)
    return done


def run_series(job):
    try:
        return job[0](*job[1:])
    except BaseException as error:
        return Done(found=[Finding(job[1], str(job[2:4]), f"campaign failed: {error!r}")])


class Journal:
    """The series that are done, a line of JSON each, in a file that other runs go on with."""

    def __init__(self, path, *files):
        self.done, self.plan, self.file = {}, {}, None
        if not path:
            return
        digest = hashlib.sha256()
        for name in files:
            digest.update(open(name, "rb").read() if os.path.exists(name) else b"none")
        of = digest.hexdigest()
        with open(path, "a+", encoding="utf-8") as file:
            file.seek(0)
            lines = [json.loads(line) for line in file if line.endswith("\n")]
            if not lines:
                file.write(json.dumps({"of": of}) + "\n")
            elif lines[0] != {"of": of}:
                raise SystemExit(f"{path} is the journal of another program: remove it to begin afresh")
        self.done = {line["series"]: Done(line["runs"], collections.Counter(line["let_go"]),
                                          [Finding(**one) for one in line["found"]])
                     for line in lines[1:] if "series" in line}
        self.plan = {line["plan"]: line["stacks"] for line in lines[1:] if "plan" in line}
        self.file = open(path, "a", encoding="utf-8")

    def write(self, line):
        if self.file:
            self.file.write(json.dumps(line) + "\n")
            self.file.flush()

    @staticmethod
    def name_of(job):
        return hashlib.sha256(repr((job[0].__name__, *job[1:])).encode()).hexdigest()[:16]

    def note(self, job, done):
        self.write({"series": self.name_of(job), "case": job[1], "group": job[2], "runs": done.runs,
                    "let_go": done.let_go, "found": [dataclasses.asdict(one) for one in done.found]})


def stacks_of(name):
    """Of each group that fails by stacks: of each stack the first and the last call, as a list."""
    if not is_there(name):
        return None
    found, groups = {}, [("alloc", "own")]
    if name in ASIDE_CASES:
        groups += [(group, "aside") for group in ASIDE_PLAN]
    for group, of in groups:
        place.reset(CASES[name])
        ran = place.run(CASES[name], Fault(group, 0, "stacks", of=of))
        calls = {}
        for number, stack in enumerate(ran.stacks, 1):
            if stack:
                calls[stack] = [calls.get(stack, [number])[0], number]
        found[group] = [[stack, *numbers] for stack, numbers in calls.items()]
    return found


def one_of_each_stack(stacks, known):
    """The numbers of the first and the last call of each stack that no case had before."""
    new = [numbers for stack, *numbers in stacks if stack not in known]
    known.update(stack for stack, *_ in stacks)
    return sorted({number for numbers in new for number in numbers})


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


def all_jobs(plan, every):
    jobs, known = [], collections.defaultdict(set)
    for name, stacks in plan.items():
        plans = [PLAN, MEMORY_PLAN] if CASES[name].library else [PLAN]
        for group, errors in itertools.chain(*(plan.items() for plan in plans)):
            for do in errors:
                jobs += [(run_until_clear, name, group, do, on, every) for on in modes(do)]
        numbers = one_of_each_stack(stacks["alloc"], known["alloc"])[::every]
        for on in (ONCE, ON):
            faults = [Fault("alloc", at, E["ENOMEM"], on) for at in numbers]
            jobs += [(run_list, name, "alloc", faults[i:i + 50]) for i in range(0, len(faults), 50)]
        for group, errors in ASIDE_PLAN.items() if name in ASIDE_CASES else ():
            numbers = one_of_each_stack(stacks[group], known[group])[::every]
            if CASES[name].library:
                errors = errors + MEMORY_PLAN.get(group, [])
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


def sampled(setting, names, count):
    open_place(*setting)
    names = [name for name in names if is_there(name)]
    jobs = sample_jobs(names, count)
    place.close()
    return names, jobs


def report(found):
    kinds = {}
    for one in found:
        kinds.setdefault(one.what, []).append(one)
    for what, runs in sorted(kinds.items()):
        first = runs[0]
        calls = collections.Counter(f"{one.call} {os.path.basename(one.path)}".strip() for one in runs)
        print(f"FOUND {len(runs)} times: {what}\n"
              f"    first: {first.case}; {first.fault}; {first.call} {first.path}\n"
              f"           status {first.status}; {first.err!r}\n"
              f"    calls: {dict(calls.most_common(6))}\n"
              f"    in: {', '.join(sorted({one.case for one in runs}))[:300]}")
    return len(kinds)


class Tally:
    """What came of all series, and a word on standard error now and then."""

    def __init__(self, series):
        self.series, self.began = series, time.monotonic()
        self.done, self.cut = 0, 0
        self.all, self.groups = Done(), collections.Counter()

    def seconds(self):
        return time.monotonic() - self.began

    def add(self, job, done):
        self.done += 1
        if self.done * 20 // self.series > (self.done - 1) * 20 // self.series:
            print(f"faults: {self.done * 100 // self.series} %, {self.seconds():.0f} s, "
                  f"{len(self.all.found)} findings", file=sys.stderr, flush=True)
        for kind in {one.what for one in done.found} - {one.what for one in self.all.found}:
            print(f"found: {kind} ({job[1]}, {job[2]})", file=sys.stderr, flush=True)
        self.all.runs += done.runs
        self.all.let_go.update(done.let_go)
        self.all.found += done.found
        self.groups[job[2]] += done.runs


def planned(pool, names, journal):
    """The stacks of each case that the program has, in the order of the cases."""
    new = [name for name in names if name not in journal.plan]
    for name, stacks in zip(new, pool.map(stacks_of, new)):
        journal.plan[name] = stacks
        journal.write({"plan": name, "stacks": stacks})
    return {name: journal.plan[name] for name in names if journal.plan[name] is not None}


def run_all(pool, jobs, journal, seconds):
    """Those that the journal has are told of again."""
    tally = Tally(len(jobs))
    left = []
    for job in jobs:
        known = journal.done.get(journal.name_of(job))
        if known:
            tally.add(job, known)
        else:
            left.append(job)
    waiting = {pool.submit(run_series, job): job for job in left}
    for future in concurrent.futures.as_completed(waiting):
        if future.cancelled():
            tally.cut += 1
            continue
        done = future.result()
        journal.note(waiting[future], done)
        tally.add(waiting[future], done)
        if seconds and tally.seconds() > seconds:
            for other in waiting:
                other.cancel()
    return tally


def arguments():
    parser = argparse.ArgumentParser()
    parser.add_argument("--sample", type=int, default=0)
    parser.add_argument("--only", default="")
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("--groups", default="")
    parser.add_argument("--seconds", type=float, default=0)
    parser.add_argument("--every", type=int, default=1)
    parser.add_argument("--journal")
    parser.add_argument("--folder")
    parser.add_argument("program")
    parser.add_argument("injector")
    return parser.parse_args()


def main():
    options = arguments()
    campaign.scratch(options.folder)
    setting = (os.path.abspath(options.program), os.path.abspath(options.injector))
    journal = Journal(options.journal, *setting, campaign.signs_beside(setting[1]), commands.__file__)
    names = [name for name in CASES if any(part in name for part in options.only.split("|"))]
    with concurrent.futures.ProcessPoolExecutor(options.jobs, initializer=open_place,
                                                initargs=setting) as pool:
        if options.sample:
            names, jobs = sampled(setting, names, options.sample)
        else:
            plan = planned(pool, names, journal)
            names, jobs = list(plan), all_jobs(plan, options.every)
        if options.groups:
            wanted = options.groups.split(",")
            jobs = [job for job in jobs if job[2] in wanted]
        random.Random(15).shuffle(jobs)  # a run that is cut has tried some of each
        tally = run_all(pool, jobs, journal, options.seconds)
    kinds = report(tally.all.found)
    print(f"faults: {len(names)} commands, {tally.all.runs} runs ({dict(tally.groups)}), "
          f"let go: {dict(tally.all.let_go)}, {len(tally.all.found)} findings of {kinds} kinds, "
          f"{tally.seconds():.0f} s")
    if tally.cut:
        print(f"cut: {tally.cut} of {len(jobs)} series were not begun")
    return 1 if tally.all.found else 0


if __name__ == "__main__":
    sys.exit(main())
