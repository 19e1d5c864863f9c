"""Reads a template and lists its questions, region by region.

    PYTHONPATH=build/python python3 examples/python/list_questions.py examples/templates/exam.omr
"""

import sys

import xuntemplate

with xuntemplate.Template.read(sys.argv[1]) as template:
    for number, page in enumerate(template.pages, start=1):
        for region in page.regions:
            for question in region.questions:
                print(f"page {number}  {region.field_name:<10} {question.question_name:<10} "
                      f"{' '.join(question.choices)}")
