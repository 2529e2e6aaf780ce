#!/usr/bin/env python3
"""Runs mutants of ../shared/tools/mutate.py's draw again on the current tree, to
compare tests before and after a change that leaves the product code alone.

    scripts/mutate_again.py BEFORE_LOG [--range A-B] [--also N,M] [--picks N,M] -- MUTATE.PY ARGUMENTS

It draws the picks as mutate.py does (same seed and count, same places; each place
is checked against the before log's line) and re-runs those the before run killed
and those listed with --also (survivors that got a test): a mutant that survived
before cannot be killed by fewer tests. BEFORE_LOG "-" runs every pick (a before
run split over several trees with --range). --picks runs just the picks named, to
check the mutants a change of some tests could let through. Run from the project root."""
import os, re, sys, time
sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), '..', '..', 'shared', 'tools'))
import mutate as m  # its drawing and its build and test commands, used as they are
import argparse, random

args = sys.argv[1:]
if not args:
    sys.exit(__doc__)
before = args.pop(0)
also = set()
lo, hi = 1, 10**9
if args and args[0] == '--range':
    args.pop(0); lo, hi = (int(x) for x in args.pop(0).split('-'))
if args and args[0] == '--also':
    args.pop(0); also = {int(x) for x in args.pop(0).split(',') if x}
only_picks = set()
if args and args[0] == '--picks':
    args.pop(0); only_picks = {int(x) for x in args.pop(0).split(',') if x}; also |= only_picks
if args and args[0] == '--':
    args.pop(0)
ap = argparse.ArgumentParser()
ap.add_argument('--config', default='native'); ap.add_argument('--count', type=int, default=40)
ap.add_argument('--seed', type=int, default=1); ap.add_argument('--only', default='')
ap.add_argument('--timeout', type=int, default=60)
a = ap.parse_args(args)
verdicts = {}
for line in (open(before) if before != '-' else []):
    g = re.match(r'\[(\d+)/\d+\] (\S+)\s+(.*)', line)
    if g: verdicts[int(g.group(1))] = (g.group(2), g.group(3))
build = os.path.join('build', a.config)
files = [f for f in m.sources(build) if f.startswith(a.only)]
pool = m.sites(files)
picks = random.Random(a.seed).sample(pool, min(a.count, len(pool)))
if m.run(['cmake', '--build', build], 900) != 0: sys.exit('the unchanged tree does not build')
killed = stillborn = 0
t0 = time.time()
for i, (f, n, s, e, rep) in enumerate(picks, 1):
    text = open(f, encoding='latin-1').read(); lines = text.split('\n'); old = lines[n - 1]
    desc = f'{f}:{n}: {old[s:e].strip() or old[s:e]!r} -> {rep.strip() or repr(rep)}'
    if not lo <= i <= hi or (only_picks and i not in only_picks): continue
    bv, bdesc = verdicts.get(i, ('killed', desc))  # without a before log: run every pick
    assert bdesc == desc, (i, bdesc, desc)  # same places as before
    if bv != 'killed' and i not in also:
        if bv == 'stillborn': stillborn += 1
        print(f'[{i}/{len(picks)}] {bv:9} {desc} (as before, not re-run)', flush=True); continue
    lines[n - 1] = old[:s] + rep + old[e:]
    try:
        open(f, 'w', encoding='latin-1').write('\n'.join(lines))
        if m.run(['cmake', '--build', build], 900) != 0:
            stillborn += 1; verdict = 'stillborn'
        else:
            ctest = ['ctest', '--test-dir', build, '-j', str(os.cpu_count() or 2), '--timeout', str(a.timeout)]
            if a.config != 'native': ctest += ['-R', '^' + f.split('/')[0] + '_']
            rc = m.run(ctest, a.timeout * 4)
            verdict = 'killed' if rc != 0 else 'SURVIVED'
            if rc != 0: killed += 1
    finally:
        open(f, 'w', encoding='latin-1').write(text)
    print(f'[{i}/{len(picks)}] {verdict:9} {desc}', flush=True)
m.run(['cmake', '--build', build], 900)
valid = len(picks) - stillborn
print(f'mutation score {killed}/{valid} = {100 * killed / max(valid, 1):.1f}% ({stillborn} stillborn, {time.time() - t0:.0f} s)')
