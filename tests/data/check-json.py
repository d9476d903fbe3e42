#!/usr/bin/python3
"""Checks the lines of standard input, each an object, against one definition of a JSON schema.

Usage: check-json.py SCHEMA DEFINITION
"""

import json
import sys

import jsonschema

schema_file, definition = sys.argv[1:]
with open(schema_file, encoding="utf-8") as file:
    schema = json.load(file)
jsonschema.Draft202012Validator.check_schema(schema)
validator = jsonschema.Draft202012Validator({**schema, "$ref": f"#/$defs/{definition}"})
wrong = 0
lines = 0
for line in sys.stdin.buffer:
    lines += 1
    for error in validator.iter_errors(json.loads(line)):
        wrong += 1
        print(f"{line!r}: {error.json_path}: {error.message}")
if not lines:
    sys.exit("no line to check")
sys.exit(1 if wrong else 0)
