"""Reading filled forms: the same records as `xuntemplate read`, from paths and from arrays."""

import csv
import json

import numpy
import pytest

import xuntemplate
from conftest import EXAMPLES, SCANS, run_tool

SCAN_FILES = [str(SCANS / name) for name in ("exam-1.png", "exam-2.jpg", "exam-3.png")]


@pytest.fixture(scope="module")
def tool_results(tmp_path_factory):
    out = tmp_path_factory.mktemp("read")
    run_tool("read", EXAMPLES / "exam.omr", *SCAN_FILES, "-o", out / "r.csv", "--json", out / "r.jsonl")
    with open(out / "r.csv", newline="") as f:
        table = list(csv.reader(f))
    records = [json.loads(line) for line in (out / "r.jsonl").read_text().splitlines()]
    return table, records


@pytest.fixture(scope="module")
def template():
    t = xuntemplate.Template.read(str(EXAMPLES / "exam.omr"))
    yield t
    t.free()


def test_records_are_the_tools_json_lines(template, tool_results):
    _, records = tool_results
    assert xuntemplate.read_forms(template, SCAN_FILES) == records
    assert xuntemplate.read_forms(template, SCAN_FILES, jobs=2) == records
    assert xuntemplate.read_form(template, [SCAN_FILES[0]]) == records[0]


def test_frame_is_the_tools_csv(template, tool_results):
    table, _ = tool_results
    frame = xuntemplate.read_forms(template, SCAN_FILES, as_frame=True)
    assert list(frame.columns) == table[0]
    assert frame.values.tolist() == table[1:]


def test_arrays_read_as_their_files(template):
    from PIL import Image

    by_path = xuntemplate.read_form(template, [SCAN_FILES[0]])
    grey = numpy.asarray(Image.open(SCAN_FILES[0]).convert("L"))
    colour = numpy.asarray(Image.open(SCAN_FILES[0]).convert("RGB"))
    for image in (grey, colour):
        record = xuntemplate.read_form(template, [image])
        assert [a["value"] for a in record["answers"]] == [a["value"] for a in by_path["answers"]]
        assert record["status"] == by_path["status"]


@pytest.mark.parametrize(
    "image, error",
    [
        (numpy.zeros((10, 10), numpy.float32), TypeError),
        (numpy.zeros((10, 10, 4), numpy.uint8), ValueError),
        (numpy.zeros((0, 10), numpy.uint8), ValueError),
        (42, TypeError),
    ],
)
def test_bad_images_are_refused(template, image, error):
    with pytest.raises(error):
        xuntemplate.read_form(template, [image])


def test_a_file_that_cannot_be_read_is_in_the_record(template, tmp_path):
    record = xuntemplate.read_form(template, [str(tmp_path / "missing.png")])
    assert record["status"] == "error"
    assert record["pages"][0]["registered"] is False
    assert record["pages"][0]["error"]
