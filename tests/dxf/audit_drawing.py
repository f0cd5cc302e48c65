#!/usr/bin/python3
"""Reads drawings with an independent program and prints what it has against them: one line a finding, file first.

Ends with 0 when it has nothing, 1 when it has, 2 when the program is not there.
"""
import sys

try:
    import ezdxf
    from ezdxf import recover  # noqa: F401  (an installation without it is too old)
except ImportError:
    sys.exit(2)


def main(paths):
    count = 0
    for path in paths:
        try:
            document = ezdxf.readfile(path)
        except Exception as error:  # whatever it raises, it could not read the file
            print(f"{path}: {type(error).__name__}: {error}")
            count += 1
            continue
        auditor = document.audit()
        for finding in list(auditor.errors) + list(auditor.fixes):
            print(f"{path}: {finding.code}: {finding.message}")
            count += 1
        kinds = {}
        for entity in document.entitydb.values():
            kinds[entity.dxftype()] = kinds.get(entity.dxftype(), 0) + 1
        print(f"{path}: " + " ".join(f"{name}={kinds[name]}" for name in sorted(kinds)), file=sys.stderr)
    return 1 if count else 0


sys.exit(main(sys.argv[1:]))
