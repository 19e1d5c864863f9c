"""Scannable form templates for optical mark recognition.

The template model (Template and its pages, regions, questions and timing marks), the template
as a JSON document (Template.dump, Template.build), and reading filled forms (read_form,
read_forms). Every failure the library reports is raised as Error; a message it would show is
given as a warning of the category Message.
"""

from ._xuntemplate import (
    Error,
    Message,
    Page,
    Pages,
    Question,
    Questions,
    Region,
    RegionDB,
    Regions,
    Template,
    TimingMark,
    TimingMarks,
    read_form,
    read_forms,
)

__all__ = [
    "Error",
    "Message",
    "Page",
    "Pages",
    "Question",
    "Questions",
    "Region",
    "RegionDB",
    "Regions",
    "Template",
    "TimingMark",
    "TimingMarks",
    "read_form",
    "read_forms",
]
