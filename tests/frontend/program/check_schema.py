"""usage: check_schema.py SCHEMA JSON: fails with the place where the JSON departs from the schema."""
import json
import sys

import jsonschema

with open(sys.argv[1]) as schema, open(sys.argv[2]) as document:
    jsonschema.validate(json.load(document), json.load(schema))
