#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""check_json.py SCHEMA FILE...: says in a line what of the files does not follow the schema, and ends with 1 then.
check_json.py --documented SCHEMA PAGES...: the same of keys of the schema that no page names."""
import json
import re
import sys

import jsonschema


def keys_of(schema):
    if isinstance(schema, list):
        for part in schema:
            yield from keys_of(part)
    if isinstance(schema, dict):
        properties = schema.get("properties", {})
        yield from properties
        for value in [*properties.values(), *(v for k, v in schema.items() if k not in ("properties", "if"))]:
            yield from keys_of(value)


def undocumented(schema, pages):
    words = set()
    for page in pages:
        with open(page, encoding="utf-8") as stream:
            words |= set(re.findall(r"`([A-Za-z0-9]+)`", stream.read()))
    return [f"{key}: in the schema and on no page" for key in sorted(set(keys_of(schema)) - words)]


def wrong_in(path, validator, answers):
    with open(path, encoding="utf-8") as stream:
        document = json.load(stream)
    if document.get("answer") not in answers:
        return [f"{path}: there is no answer {document.get('answer')!r} in the schema"]
    return [f"{path}: {'/'.join(map(str, error.path))}: {error.message}" for error in validator.iter_errors(document)]


arguments = sys.argv[1:]
documented = arguments[0] == "--documented"
with open(arguments[documented], encoding="utf-8") as stream:
    schema = json.load(stream)
jsonschema.Draft202012Validator.check_schema(schema)
if documented:
    complaints = undocumented(schema, arguments[2:])
else:
    validator = jsonschema.Draft202012Validator(schema)
    answers = {rule["if"]["properties"]["answer"]["const"] for rule in schema["allOf"]}
    complaints = [line for path in arguments[1:] for line in wrong_in(path, validator, answers)]
print("\n".join(complaints), end="")
sys.exit(1 if complaints else 0)
