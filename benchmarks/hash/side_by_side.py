#!/usr/bin/env python3
"""Starts a benchmark of this folder again and again, and prints for each row the least nanoseconds of all starts, ours
and the peer's, and the median of the ratios with the least and the greatest. Where a program's memory comes to lie,
which every start decides anew, makes a difference of some percent to either side.

usage: side_by_side.py PROGRAM [FILTER [STARTS]]
"""
import json
import subprocess
import sys
from statistics import median

PROGRAM = sys.argv[1]
FILTER = sys.argv[2] if len(sys.argv) > 2 else '.'
STARTS = int(sys.argv[3]) if len(sys.argv) > 3 else 12

rows = {}
for _ in range(STARTS):
    options = [f'--benchmark_filter={FILTER}', '--benchmark_min_time=0.05', '--benchmark_format=json']
    out = subprocess.run([PROGRAM, *options], capture_output=True, check=True).stdout
    for row in json.loads(out)['benchmarks']:
        rows.setdefault(row['name'], []).append(row)

width = max(map(len, rows))
print(f'{"":{width}}        ours        peer  ratio')
for name, starts in rows.items():
    ours, peer = (min(row[side] for row in starts) for side in ('ours_ns', 'peer_ns'))
    ratios = [row['ratio'] for row in starts]
    print(f'{name:{width}} {ours:11.1f} {peer:11.1f}  {median(ratios):.3f} ({min(ratios):.3f} to {max(ratios):.3f})')
