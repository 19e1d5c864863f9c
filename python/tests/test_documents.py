"""Template.dump and Template.build: the same document as `xuntemplate dump` and `build`."""

import copy
import json

import pytest

import xuntemplate
from conftest import EXAMPLES, TOOL_DATA, run_tool, tool_dump

# Computed values: dumped for people, ignored by a build.
COMPUTED = {"Version", "CompatibleVersion", "Valid", "Editable"}


# Files that hold every key: a key a file lacks is made anew at each read.
@pytest.mark.parametrize("path", [EXAMPLES / "exam.omr", EXAMPLES / "survey.omr", EXAMPLES / "scanned.omr"])
def test_dump_is_the_tools_document(path):
    with xuntemplate.Template.read(str(path), for_edit=True) as t:
        assert t.dump() == tool_dump(path)


def without_fresh_keys(document):
    """The document without what a build computes or makes anew (question keys)."""
    document = copy.deepcopy(document)
    for name in COMPUTED:
        document["Template"].pop(name)
    for page in document["Template"]["Pages"]:
        for region in page["Regions"]:
            for question in region["Questions"]:
                question.pop("Key")
    return document


def test_build_is_the_tools_build(tmp_path):
    document = tool_dump(EXAMPLES / "exam.omr")
    source = tmp_path / "exam.json"
    source.write_text(json.dumps(document))
    run_tool("build", source, "-o", tmp_path / "by_tool.omr")
    with xuntemplate.Template.build(document) as t:
        assert without_fresh_keys(t.dump()) == without_fresh_keys(document)
        t.save(str(tmp_path / "by_module.omr"))
    assert without_fresh_keys(tool_dump(tmp_path / "by_module.omr")) == without_fresh_keys(
        tool_dump(tmp_path / "by_tool.omr")
    )


@pytest.mark.parametrize(
    "name, message",
    [
        ("wrong_type", "/Template/Pages/0/Regions/0/Left: expected a whole number from -32768 to 32767"),
        ("out_of_range", "/Template/Pages/0/Regions/0/Left: expected a whole number from -32768 to 32767"),
        ("unknown_key", "/Template/PageWidht: unknown key"),
        ("not_a_template", "/: expected an object"),
    ],
)
def test_a_bad_document_names_the_value(name, message):
    document = json.loads((TOOL_DATA / f"{name}.json").read_text())
    with pytest.raises(ValueError) as caught:
        xuntemplate.Template.build(document)
    assert str(caught.value).endswith(message)


def test_values_json_cannot_hold_are_refused():
    document = tool_dump(EXAMPLES / "exam.omr")
    document["Template"]["Attributes"]["When"] = object()
    with pytest.raises(TypeError, match="/Template/Attributes/When"):
        xuntemplate.Template.build(document)
