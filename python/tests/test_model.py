"""The template model: properties, the lists as sequences, saving and reading back."""

import pytest

import xuntemplate
from conftest import EXAMPLES, tool_dump


def test_properties_are_snake_case_and_say_what_they_wrap(exam):
    assert exam.num_pages == 1
    assert xuntemplate.Template.rdd_name.__doc__ == "Wraps clsXUNTemplate::RDDName"
    assert xuntemplate.Question.question_name.__doc__ == "Wraps clsXUNQuestion::QuestionName"
    region = exam.pages[0].regions[1]
    region.top = region.top + 7
    assert exam.pages[0].regions[1].top == region.top
    with pytest.raises(TypeError):
        region.top = "high"


def test_lists_are_sequences(exam):
    regions = exam.pages[0].regions
    names = [r.field_name for r in regions]
    assert names == ["FormID", "Student", "Answers"]
    assert len(regions) == 3
    assert regions[-1].field_name == "Answers"
    assert regions[regions[0].key.lower()].key == regions[0].key  # keys match in any case
    assert regions[0].key in regions and "nothing" not in regions
    with pytest.raises(IndexError):
        regions[3]
    with pytest.raises(IndexError):
        regions[-4]
    with pytest.raises(KeyError):
        regions["nothing"]
    # The links point back up the tree.
    question = regions[2].questions[0]
    assert question.region.key == regions[2].key
    assert question.region.page.template.name == exam.name
    assert len(list(regions[2].questions)) == len(regions[2].questions) > 1


def test_adding_and_removing(exam):
    pages = exam.pages
    page = xuntemplate.Page()
    assert pages.add(page, before=0)
    assert len(pages) == 2 and pages[0].key == page.key and page.key
    pages.remove(page.key)
    assert len(pages) == 1
    with pytest.raises(KeyError):
        pages.remove(page.key)
    marks = exam.pages[0].timing_marks
    mark = xuntemplate.TimingMark()
    mark.left, mark.top, mark.width, mark.height = 10, 20, 30, 40
    before = len(marks)
    assert marks.add(mark, "corner")
    assert len(marks) == before + 1
    assert (marks["CORNER"].left, marks[-1].height) == (10, 40)
    with pytest.raises(TypeError):  # beyond a 16-bit integer
        mark.left = 1 << 20
    del exam.pages[0].regions[0]
    assert [r.field_name for r in exam.pages[0].regions] == ["Student", "Answers"]


def test_edit_save_and_read_back(exam, tmp_path):
    exam.description = "Changed"
    exam.pages[0].regions[1].questions[0].question_name = "Learner"
    target = tmp_path / "changed.omr"
    assert exam.save(target) is True  # paths as os.PathLike too
    with xuntemplate.Template.read(target, for_edit=True) as back:
        assert back.description == "Changed"
        assert back.pages[0].regions[1].questions[0].question_name == "Learner"
        # What the module saved is what the tool reads.
        assert back.dump() == tool_dump(target)
        # The tree came back whole (attribute values are text in the file).
        for name in ("Pages", "NumItems", "PageWidth", "PageHeight"):
            assert back.dump()["Template"][name] == exam.dump()["Template"][name]


def test_a_template_read_for_reading_is_not_saved(tmp_path):
    target = tmp_path / "never.omr"
    t = xuntemplate.Template.read(str(EXAMPLES / "exam.omr"))
    with pytest.raises(xuntemplate.Error) as caught:
        t.save(str(target))
    assert caught.value.title == "Read Only"
    assert "opened for reading only" in caught.value.text
    assert not target.exists()
