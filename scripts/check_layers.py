#!/usr/bin/env python3
"""Fails when a file includes a header of a folder above its own.

The order of the folders is layers.txt, top first. A file in one of those folders
may include headers of its own folder and of the folders below it; a test in
tests/<folder> follows the rule of <folder> and may also use tests/support and the
tests of folders below. tools/, bench/ and tests/support stand above everything.

Usage: check_layers.py [ROOT]        checks the tree (default: the repository)
       check_layers.py --self-test   plants an upward include and expects a failure
"""
import os
import re
import sys
import tempfile

INCLUDE = re.compile(r'^\s*#\s*include\s*"([^"]+)"', re.M)
SOURCE_ENDINGS = ('.h', '.hpp', '.cpp', '.cc', '.c')
UNRESTRICTED = ('tools', 'bench', os.path.join('tests', 'support'), 'scripts')


def read_layers(root):
    with open(os.path.join(root, 'layers.txt'), encoding='utf-8') as f:
        return [line.strip() for line in f if re.fullmatch(r'[a-z]+', line.strip())]


def allowed_for(rank, folder):
    """Folders a file of `folder` may include from: its own and those below."""
    return set(name for name, r in rank.items() if r >= rank[folder])


def check(root):
    layers = read_layers(root)
    rank = {name: i for i, name in enumerate(layers)}
    problems = []
    for dirpath, dirnames, filenames in os.walk(root):
        rel_dir = os.path.relpath(dirpath, root)
        dirnames[:] = [d for d in dirnames if not d.startswith('.') and not d.startswith('build')]
        if rel_dir.startswith(UNRESTRICTED):
            continue
        parts = rel_dir.split(os.sep)
        if parts[0] in rank:
            folder, is_test = parts[0], False
        elif parts[0] == 'tests' and len(parts) > 1 and parts[1] in rank:
            folder, is_test = parts[1], True
        else:
            continue
        allowed = allowed_for(rank, folder)
        for name in sorted(filenames):
            if not name.endswith(SOURCE_ENDINGS):
                continue
            path = os.path.join(dirpath, name)
            with open(path, encoding='utf-8', errors='replace') as f:
                text = f.read()
            for m in INCLUDE.finditer(text):
                target = m.group(1).split('/')
                line = text.count('\n', 0, m.start()) + 1
                where = '%s:%d' % (os.path.relpath(path, root), line)
                if len(target) == 1:
                    continue  # a header beside the file
                top = target[0]
                if is_test and top == 'tests':
                    sub = target[1] if len(target) > 2 else ''
                    if sub == 'support' or sub in allowed:
                        continue
                    problems.append('%s: "%s" is the test folder of %s, above %s' %
                                    (where, m.group(1), sub or '?', folder))
                elif top not in rank:
                    problems.append('%s: "%s" is not in a folder that layers.txt lists' %
                                    (where, m.group(1)))
                elif top not in allowed:
                    problems.append('%s: "%s" reaches up from %s to %s (layers.txt: %s)' %
                                    (where, m.group(1), folder, top, ' > '.join(layers)))
    return problems


def self_test():
    with tempfile.TemporaryDirectory() as root:
        with open(os.path.join(root, 'layers.txt'), 'w') as f:
            f.write('# top first\napp\nkeys\nbase\n')
        files = {
            'app/a.cpp': '#include "keys/k.h"\n#include "base/b.h"\n',
            'keys/k.cpp': '#include "keys/k.h"\n#include "base/b.h"\n',
            'keys/up.cpp': '#include "base/b.h"\n#include "app/a.h"\n',
            'base/b.cpp': '#include "tools/t.h"\n',
            'tests/keys/t.cpp': '#include "tests/support/s.h"\n#include "tests/app/f.h"\n',
            'tools/t.cpp': '#include "app/a.h"\n',
        }
        for rel, text in files.items():
            os.makedirs(os.path.join(root, os.path.dirname(rel)), exist_ok=True)
            with open(os.path.join(root, rel), 'w') as f:
                f.write(text)
        found = check(root)
        expected = ['keys/up.cpp:2', 'base/b.cpp:1', 'tests/keys/t.cpp:2']
        ok = len(found) == len(expected) and all(
            any(p.startswith(e + ':') for p in found) for e in expected)
        for p in found:
            print(p)
        print('self-test: %s' % ('1 passed, 0 failed' if ok else '0 passed, 1 failed'))
        return 0 if ok else 1


def main():
    if len(sys.argv) > 1 and sys.argv[1] == '--self-test':
        return self_test()
    root = sys.argv[1] if len(sys.argv) > 1 else os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
    problems = check(root)
    for p in problems:
        print(p)
    if problems:
        print('layering: %d upward include(s)' % len(problems))
        return 1
    print('layering: every include points down (%s)' % ' > '.join(read_layers(root)))
    return 0


if __name__ == '__main__':
    sys.exit(main())
