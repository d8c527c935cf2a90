#!/usr/bin/env python3
"""Ends each command by SIGKILL, and lets several work on the same files at once.

usage: kills.py [--sample RUNS] [--every K] [--only WORDS] [--jobs N] [--seed N] [--folder FOLDER]
                PROGRAM INJECTOR

A kill comes before each file call of each command, on a file system with files without a name and
on one without (with --every before each Kth, up to the last), and at moments of chance. Afterwards every file is the old or the new one, and the
next run works and removes what the killed one left. Then several processes set settings in one
file, and write one output, while some are killed: nothing that was told to be done is lost, and
whoever reads meanwhile finds whole files.
"""
import argparse
import collections
import concurrent.futures
import itertools
import os
import random
import signal
import subprocess
import sys
import time

import campaign
import commands
from campaign import Fault, Finding
from faults import CASES, report

place = None
worlds = {}


def open_place(program, injector):
    global place
    place = campaign.Place(program, injector, campaign.is_sanitized(program))


def after_kill(name):
    """What is wrong with the files that a killed run left, and with the next run."""
    case, world = CASES[name], worlds[name]
    now = place.look()
    findings = campaign.judge_files(case, campaign.Ran(-signal.SIGKILL, b"", ""), world, now)
    excused = [f for f in findings if campaign.OWN_NAMES.match(f) or
               (f in EMPTY and not now[EMPTY[f]])]
    findings = [f for f in findings if f not in excused]
    ran = place.run(case)
    if ran.status != 0:
        findings.append(f"next run: status {ran.status}: {ran.err.strip()[:150]}")
    else:
        after = campaign.judge(case, world, ran, place.look(), place.server if case.sends else None)
        if "--resume" in case.words:  # it tells how much was done before
            after = [f for f in after if not f.startswith("false success: standard output")]
        findings += ["next run: " + f for f in campaign.judge_again(place, case, world, after)]
    return findings


# The first instant of a file where the system knows no files without a name.
EMPTY = {f"changed: {name} is neither the old one nor the new": name
         for name in ("config/kerno/registry.reg", "bin/Temp/Quenkit_Setting/Quenkit.ini")}


def kill_at(name, at, named):
    """Whether there was such a call, and what is wrong afterwards."""
    fault = Fault("file", at, "kill", named=named)
    place.reset(CASES[name])
    ran = place.run(CASES[name], fault)
    if ran.status != -signal.SIGKILL:
        found = [f"not killed: status {ran.status}"] if ran.hit else []
    else:
        found = after_kill(name)
    return ran.status == -signal.SIGKILL, [Finding.of(name, fault, ran, what) for what in found]


def kill_everywhere(name, named, every):
    runs, found = 0, []
    first = 1 + random.Random(f"{name} {named}").randrange(every)
    for at in itertools.count(first, every):
        was_killed, more = kill_at(name, at, named)
        found += more
        runs += 1
        if not was_killed:
            return runs, found


def kill_at_calls(name, calls):
    found = []
    for at, named in calls:
        found += kill_at(name, at, named)[1]
    return len(calls), found


def kill_by_chance(name, seed, count):
    """Between two calls, too, and while threads work."""
    case, chance, found = CASES[name], random.Random(seed), []
    longest = max(worlds[name].ran.seconds, 0.01) * 1.2
    for _ in range(count):
        place.reset(case)
        process = subprocess.Popen(place.words(case), cwd=place.work, env=place.environment(case),
                                   stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL)
        delay = chance.uniform(0, longest)
        time.sleep(delay)
        process.kill()
        process.wait()
        found += [Finding(name, f"moment {int(delay * 1e6)}: kill", what)
                  for what in after_kill(name)]
    return count, found


def start(words, **more):
    return subprocess.Popen([str(place.program), *words], cwd=place.work, env=place.env,
                            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                            stderr=subprocess.PIPE, **more)


def together(process, err):
    return f"together: status {process.returncode}: {err.strip()[:120]}"


def settings_together(_, seed, rounds, kills):
    """Processes set a key each in one file, in rounds."""
    name, chance, found = "settings set, beside", random.Random(seed), []
    case = CASES[name]
    place.reset(case)
    file = place.top / "bin" / "Quenkit_Setting" / "Quenkit.ini"
    sure, fault = {}, f"processes {seed}" + (", killed" if kills else "")
    for number in range(rounds):
        keys = [f"Key{i}" for i in range(4)]
        running = [start(["settings", "set", "Together", key, str(number)]) for key in keys]
        if kills:
            time.sleep(chance.uniform(0, 0.05))
            running[chance.randrange(4)].kill()
        for key, process in zip(keys, running):
            err = process.communicate(timeout=60)[1].decode()
            if process.returncode == 0:
                sure[key] = {str(number)}
            elif process.returncode == -signal.SIGKILL:
                sure[key] = sure.get(key, {None}) | {str(number)}
            else:
                found.append(Finding(name, fault, together(process, err), process.returncode, err))
        lines = file.read_bytes().decode("utf-16").splitlines()
        for key, values in sure.items():
            value = next((line.split("=")[1] for line in lines if line.startswith(key + "=")), None)
            if value not in values:
                found.append(Finding(name, fault, "together: a setting was lost"))
        if "Key=永" not in lines or "; a comment" not in lines:
            found.append(Finding(name, fault, "together: other lines were lost"))
    left = [n for n in os.listdir(file.parent) if n != file.name]
    if left and not kills:
        found.append(Finding(name, fault, f"together: left {left}"))
    return rounds * 4, found


def output_together(_, seed, rounds, kills):
    """Two processes write one output; a reader looks all the time."""
    name, chance, found = "cut over svg", random.Random(seed), []
    place.reset(CASES[name])
    target = place.work / "a.svg"
    texts, whole = ["Ab", "Abgq" * 40], {target.read_bytes()}
    words = [["cut", "--text", text, *commands.FACE, "--quiet", "-o", "a.svg"] for text in texts]
    fault = f"processes {seed}" + (", killed" if kills else "")
    for word in words:
        start(word).communicate(timeout=60)
        whole.add(target.read_bytes())
    for _ in range(rounds):
        running = [start(word) for word in words]
        until = time.monotonic() + chance.uniform(0, 0.05)
        while any(process.poll() is None for process in running):
            if target.read_bytes() not in whole:
                found.append(Finding(name, fault, "together: a torn output"))
            if kills and time.monotonic() > until:
                running[0].kill()
        for process in running:
            err = process.communicate()[1].decode()
            if process.returncode not in (0, -signal.SIGKILL):
                found.append(Finding(name, fault, together(process, err), process.returncode, err))
    start(words[0]).communicate(timeout=60)
    left = sorted(n for n in os.listdir(place.work) if n != "a.svg")
    if left:
        found.append(Finding(name, fault, "together: names are left"))
    return rounds * 2, found


def run_job(job):
    try:
        return job[0](*job[1:])
    except Exception as error:
        return 0, [Finding(job[1], "file", f"campaign failed: {error!r}")]


def all_jobs(names, seed, every):
    jobs = [(kill_everywhere, name, named, every) for name in names for named in (False, True)]
    jobs += [(kill_by_chance, name, f"{seed} {name}", max(1, 20 // every)) for name in names]
    for number in range(4 if every == 1 else 1):
        jobs += [(settings_together, "", seed + number, 60, kills) for kills in (False, True)]
        jobs += [(output_together, "", seed + number, 40, kills) for kills in (False, True)]
    return jobs


def sample_jobs(names, seed, count):
    chance, jobs = random.Random(seed), []
    for i in range(count):
        name = names[i % len(names)]
        calls = sum(worlds[name].ran.own[group] for group in campaign.GROUPS[:7])
        jobs.append((kill_at_calls, name, [(chance.randint(1, calls), chance.random() < 0.3)]))
    return jobs + [(settings_together, "", seed, 6, True), (output_together, "", seed, 6, True)]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--sample", type=int, default=0)
    parser.add_argument("--every", type=int, default=1)
    parser.add_argument("--only", default="")
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("--seed", type=int, default=15)
    parser.add_argument("--folder")
    parser.add_argument("program")
    parser.add_argument("injector")
    options = parser.parse_args()
    campaign.scratch(options.folder)
    began = time.monotonic()
    setting = (os.path.abspath(options.program), os.path.abspath(options.injector))
    open_place(*setting)
    # What only reads is killed as often in the campaign of faults, which ends it in other ways.
    names = [name for name in CASES if any(part in name for part in options.only.split("|"))]
    for name in list(names):
        try:
            worlds[name] = campaign.world_of(place, CASES[name])
        except SystemExit as problem:
            print(f"left out: {problem}", flush=True)
            names.remove(name)
    jobs = (sample_jobs(names, options.seed, options.sample) if options.sample
            else all_jobs(names, options.seed, options.every))
    runs, found, kinds = collections.Counter(), [], 0
    with concurrent.futures.ProcessPoolExecutor(options.jobs, initializer=open_place,
                                                initargs=setting) as pool:
        for job, (count, more) in zip(jobs, pool.map(run_job, jobs)):
            runs[job[0].__name__] += count
            found += more
    kinds = report(found)
    print(f"kills: {len(names)} commands, {sum(runs.values())} runs ({dict(runs)}), "
          f"{len(found)} findings of {kinds} kinds, {time.monotonic() - began:.0f} s")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
