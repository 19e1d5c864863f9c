"""Reads the example scans into a table, one row a form.

    PYTHONPATH=build/python python3 examples/python/read_scans.py examples/templates/exam.omr \
        examples/scans/exam-1.png examples/scans/exam-2.jpg examples/scans/exam-3.png
"""

import sys

import xuntemplate

with xuntemplate.Template.read(sys.argv[1]) as template:
    # With pandas installed, as_frame=True gives the same cells as `xuntemplate read`'s CSV.
    for record in xuntemplate.read_forms(template, sys.argv[2:]):
        answers = " ".join(f"{a['name']}={a['value']}" for a in record["answers"])
        print(f"{record['images'][0]}: {record['status']}  {answers}")
