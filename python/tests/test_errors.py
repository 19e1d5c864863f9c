"""Every report of the library arrives as xuntemplate.Error, never as a message or a False."""

import warnings

import pytest

import xuntemplate
from conftest import EXAMPLES, TOOL_DATA


def test_error_is_an_exception_with_the_report():
    assert issubclass(xuntemplate.Error, Exception)
    t = xuntemplate.Template()
    with pytest.raises(xuntemplate.Error) as caught:
        t.pages.add(None)
    error = caught.value
    assert error.number == 91
    assert error.text == "Object variable or With block variable not set"
    assert error.location.endswith("clsXUNPages.Add")
    assert error.title is None
    with pytest.raises(xuntemplate.Error) as caught:
        t.pages.add(xuntemplate.Page(), before=5)
    assert (caught.value.number, caught.value.text) == (5, "Invalid procedure call or argument")
    assert len(t.pages) == 0


@pytest.mark.parametrize(
    "name, title, line",
    [
        ("region_without_name.omr", "Region Error", 17),
        ("no_version.omr", "Form Error", None),
        ("damaged_archive.omr", None, None),
        ("not_valid_for_reading.omr", "Form Error", 1),
        ("choices_without_codes.omr", "Question Error", 17),
    ],
)
def test_a_failed_read_carries_the_readers_diagnostic(name, title, line):
    with warnings.catch_warnings(record=True) as shown:
        warnings.simplefilter("always")
        with pytest.raises(xuntemplate.Error) as caught:
            xuntemplate.Template.read(str(TOOL_DATA / name))
    # The message the reader showed is the error, not a warning as well.
    assert [w for w in shown if issubclass(w.category, xuntemplate.Message)] == []
    error = caught.value
    assert error.text
    if title:
        assert error.title == title
    assert error.line == line


def test_a_missing_file_is_error_53(tmp_path):
    with pytest.raises(xuntemplate.Error) as caught:
        xuntemplate.Template.read(str(tmp_path / "missing.omr"))
    assert caught.value.number == 53


def test_errors_leave_the_tree_usable():
    with xuntemplate.Template.read(str(EXAMPLES / "survey.omr"), for_edit=True) as t:
        count = len(t.pages)
        with pytest.raises(xuntemplate.Error):
            t.pages.add(None)
        assert len(t.pages) == count
        assert t.dump()["Template"]["NumPages"] == count
