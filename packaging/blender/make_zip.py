#!/usr/bin/env python3
"""make_zip.py VERSION OUT.zip: packs the add-on. The same sources give the same bytes."""

import sys
import zipfile
from pathlib import Path

FIXED_TIME = (1980, 1, 1, 0, 0, 0)


def main(version, output):
    addon = Path(__file__).parent / "facet_bench"
    as_tuple = f"({', '.join(version.split('.'))})"
    with zipfile.ZipFile(output, "w", zipfile.ZIP_DEFLATED) as archive:
        for source in sorted([*addon.glob("*.py"), *addon.glob("*.toml")]):
            text = source.read_text("utf-8")
            text = text.replace('"version": (0, 0, 0)', f'"version": {as_tuple}')
            text = text.replace('\nversion = "0.0.0"', f'\nversion = "{version}"')
            entry = zipfile.ZipInfo(f"facet_bench/{source.name}", FIXED_TIME)
            entry.external_attr = 0o100644 << 16
            archive.writestr(entry, text, zipfile.ZIP_DEFLATED)


if __name__ == "__main__":
    main(*sys.argv[1:])
