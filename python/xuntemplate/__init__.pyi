"""Type stubs of the xuntemplate package (the extension module _xuntemplate)."""

from os import PathLike
from typing import Any, Dict, Iterable, Iterator, List, Optional, Sequence, Union, overload

import numpy
import pandas

_Image = Union[str, PathLike[str], numpy.ndarray]
_Where = Union[int, str, None]

class Error(Exception):
    """A failure the library reported."""

    number: Optional[int]
    location: str
    text: str
    title: Optional[str]
    line: Optional[int]

class Message(UserWarning):
    """A message the library showed to the user."""

class Template:
    """A form template: its pages, their regions and questions. Wraps clsXUNTemplate"""

    def __init__(self) -> None: ...
    column_width: float
    """Wraps clsXUNTemplate::ColumnWidth"""
    columns: int
    """Wraps clsXUNTemplate::Columns"""
    @property
    def compatible_version(self) -> str:
        """Wraps clsXUNTemplate::CompatibleVersion"""
    description: str
    """Wraps clsXUNTemplate::Description"""
    duplex: bool
    """Wraps clsXUNTemplate::Duplex"""
    @property
    def editable(self) -> bool:
        """Wraps clsXUNTemplate::Editable"""
    header_count: int
    """Wraps clsXUNTemplate::HeaderCount"""
    header_item_count: int
    """Wraps clsXUNTemplate::HeaderItemCount"""
    header_page_count: int
    """Wraps clsXUNTemplate::HeaderPageCount"""
    manufacturer: str
    """Wraps clsXUNTemplate::Manufacturer"""
    name: str
    """Wraps clsXUNTemplate::Name"""
    @property
    def num_fields(self) -> int:
        """Wraps clsXUNTemplate::NumFields"""
    @property
    def num_graded_items(self) -> int:
        """Wraps clsXUNTemplate::NumGradedItems"""
    @property
    def num_items(self) -> int:
        """Wraps clsXUNTemplate::NumItems"""
    @property
    def num_pages(self) -> int:
        """Wraps clsXUNTemplate::NumPages"""
    @property
    def num_questions(self) -> int:
        """Wraps clsXUNTemplate::NumQuestions"""
    orientation: int
    """Wraps clsXUNTemplate::Orientation"""
    page_height: float
    """Wraps clsXUNTemplate::PageHeight"""
    page_width: float
    """Wraps clsXUNTemplate::PageWidth"""
    @property
    def pages(self) -> Pages:
        """Wraps clsXUNTemplate::Pages"""
    rdd_name: str
    """Wraps clsXUNTemplate::RDDName"""
    read_type: int
    """Wraps clsXUNTemplate::ReadType"""
    row_bottom_margin: float
    """Wraps clsXUNTemplate::RowBottomMargin"""
    row_top_margin: float
    """Wraps clsXUNTemplate::RowTopMargin"""
    self_score: bool
    """Wraps clsXUNTemplate::SelfScore"""
    tag: str
    """Wraps clsXUNTemplate::Tag"""
    @property
    def valid(self) -> bool:
        """Wraps clsXUNTemplate::Valid"""
    @property
    def version(self) -> str:
        """Wraps clsXUNTemplate::Version"""
    @staticmethod
    def read(path: Union[str, PathLike[str]], for_edit: bool = False) -> Template: ...
    def save(self, path: Union[str, PathLike[str]], verbose: bool = False, register: bool = True) -> bool: ...
    def copy(self) -> Template: ...
    def clear(self) -> None: ...
    def free(self) -> None: ...
    def dump(self, images_folder: Union[str, PathLike[str]] = "", document_folder: Union[str, PathLike[str]] = "") -> Dict[str, Any]: ...
    @staticmethod
    def build(document: Dict[str, Any], folder: Union[str, PathLike[str]] = ".") -> Template: ...
    def __enter__(self) -> Template: ...
    def __exit__(self, *args: object) -> None: ...

class Page:
    """A page of a template. Wraps clsXUNPage"""

    def __init__(self) -> None: ...
    column_width: float
    """Wraps clsXUNPage::ColumnWidth"""
    drop_out_color: int
    """Wraps clsXUNPage::DropOutColor"""
    drop_out_threshold: int
    """Wraps clsXUNPage::DropOutThreshold"""
    filled_pixels: int
    """Wraps clsXUNPage::FilledPixels"""
    image_height: int
    """Wraps clsXUNPage::ImageHeight"""
    image_width: int
    """Wraps clsXUNPage::ImageWidth"""
    key: str
    """Wraps clsXUNPage::Key"""
    @property
    def num_fields(self) -> int:
        """Wraps clsXUNPage::NumFields"""
    @property
    def num_items(self) -> int:
        """Wraps clsXUNPage::NumItems"""
    @property
    def num_questions(self) -> int:
        """Wraps clsXUNPage::NumQuestions"""
    @property
    def num_timing_marks(self) -> int:
        """Wraps clsXUNPage::NumTimingMarks"""
    @property
    def regions(self) -> Regions:
        """Wraps clsXUNPage::Fields"""
    tag: str
    """Wraps clsXUNPage::Tag"""
    @property
    def template(self) -> Optional[Template]:
        """Wraps clsXUNPage::Template"""
    @property
    def timing_marks(self) -> TimingMarks:
        """Wraps clsXUNPage::TimingMarks"""
    weighted_rotate: int
    """Wraps clsXUNPage::WeightedRotate"""
    xdpi: int
    """Wraps clsXUNPage::XDPI"""
    ydpi: int
    """Wraps clsXUNPage::YDPI"""

class Region:
    """A region (field) of a page: a bubble grid, a text box, a barcode... Wraps clsXUNField"""

    def __init__(self) -> None: ...
    auto_detect: bool
    """Wraps clsXUNField::AutoDetect"""
    auto_increment: bool
    """Wraps clsXUNField::AutoIncrement"""
    auto_increment_spans_templates: bool
    """Wraps clsXUNField::AutoIncrementSpansTemplates"""
    barcode_delimiter: str
    """Wraps clsXUNField::BarcodeDelimiter"""
    barcode_distance: int
    """Wraps clsXUNField::BarcodeDistance"""
    barcode_length: int
    """Wraps clsXUNField::BarcodeLength"""
    bottom: int
    """Wraps clsXUNField::Bottom"""
    col_gap: int
    """Wraps clsXUNField::ColGap"""
    data_type: int
    """Wraps clsXUNField::DataType"""
    @property
    def db(self) -> Optional[RegionDB]:
        """Wraps clsXUNField::DB"""
    default_fill: str
    """Wraps clsXUNField::DefaultFill"""
    field_name: str
    """Wraps clsXUNField::FieldName"""
    field_type: int
    """Wraps clsXUNField::FieldType"""
    image_clip_add_column: bool
    """Wraps clsXUNField::ImageClipAddColumn"""
    image_clip_compression: int
    """Wraps clsXUNField::ImageClipCompression"""
    image_clip_file: str
    """Wraps clsXUNField::ImageClipFile"""
    image_clip_type: int
    """Wraps clsXUNField::ImageClipType"""
    image_fill_prompt: bool
    """Wraps clsXUNField::ImageFillPrompt"""
    image_link_question_key: str
    """Wraps clsXUNField::ImageLinkQuestionKey"""
    image_link_value: str
    """Wraps clsXUNField::ImageLinkValue"""
    key: str
    """Wraps clsXUNField::Key"""
    left: int
    """Wraps clsXUNField::Left"""
    link_group: int
    """Wraps clsXUNField::LinkGroup"""
    link_start: bool
    """Wraps clsXUNField::LinkStart"""
    num_cols: int
    """Wraps clsXUNField::NumCols"""
    @property
    def num_items(self) -> int:
        """Wraps clsXUNField::NumItems"""
    @property
    def num_marks(self) -> int:
        """Wraps clsXUNField::NumMarks"""
    num_rows: int
    """Wraps clsXUNField::NumRows"""
    orient: int
    """Wraps clsXUNField::Orient"""
    @property
    def page(self) -> Optional[Page]:
        """Wraps clsXUNField::Page"""
    pattern: str
    """Wraps clsXUNField::Pattern"""
    @property
    def questions(self) -> Questions:
        """Wraps clsXUNField::Questions"""
    read: bool
    """Wraps clsXUNField::Read"""
    recognition_type: int
    """Wraps clsXUNField::RecognitionType"""
    right: int
    """Wraps clsXUNField::Right"""
    row_gap: int
    """Wraps clsXUNField::RowGap"""
    start_col: int
    """Wraps clsXUNField::StartCol"""
    start_row: int
    """Wraps clsXUNField::StartRow"""
    tag: str
    """Wraps clsXUNField::Tag"""
    threshold: int
    """Wraps clsXUNField::Threshold"""
    top: int
    """Wraps clsXUNField::Top"""

class RegionDB:
    """A region's database lookup. Wraps clsXUNFieldDB"""

    catalog: str
    """Wraps clsXUNFieldDB::Catalog"""
    connect: str
    """Wraps clsXUNFieldDB::Connect"""
    db_type: int
    """Wraps clsXUNFieldDB::DBType"""
    directory_based: bool
    """Wraps clsXUNFieldDB::DirectoryBased"""
    dsn_based: bool
    """Wraps clsXUNFieldDB::DSNBased"""
    dsn_name: str
    """Wraps clsXUNFieldDB::DSNName"""
    lookup_field: str
    """Wraps clsXUNFieldDB::LookupField"""
    name: str
    """Wraps clsXUNFieldDB::Name"""
    password: str
    """Wraps clsXUNFieldDB::Password"""
    replace_field: str
    """Wraps clsXUNFieldDB::ReplaceField"""
    table: str
    """Wraps clsXUNFieldDB::Table"""
    unicode: bool
    """Wraps clsXUNFieldDB::Unicode"""
    user: str
    """Wraps clsXUNFieldDB::User"""
    valid: bool
    """Wraps clsXUNFieldDB::Valid"""

class Question:
    """A question of a region. Wraps clsXUNQuestion"""

    blanks_flag: int
    """Wraps clsXUNQuestion::BlanksFlag"""
    blanks_return: str
    """Wraps clsXUNQuestion::BlanksReturn"""
    choices: List[str]
    """The choices' texts, as a list (a copy). Wraps clsXUNQuestion::Choices"""
    codes: List[str]
    """The choices' codes, as a list (a copy). Wraps clsXUNQuestion::Codes"""
    correct: float
    """Wraps clsXUNQuestion::Correct"""
    discriminate: bool
    """Wraps clsXUNQuestion::Discriminate"""
    duplicate_return: str
    """Wraps clsXUNQuestion::DuplicateReturn"""
    error_return: str
    """Wraps clsXUNQuestion::ErrorReturn"""
    extra_credit: bool
    """Wraps clsXUNQuestion::ExtraCredit"""
    grade: bool
    """Wraps clsXUNQuestion::Grade"""
    id_add: bool
    """Wraps clsXUNQuestion::IDAdd"""
    id_type: int
    """Wraps clsXUNQuestion::IDType"""
    id_value: str
    """Wraps clsXUNQuestion::IDValue"""
    incorrect: float
    """Wraps clsXUNQuestion::Incorrect"""
    key: str
    """Wraps clsXUNQuestion::Key"""
    mults_allowed: int
    """Wraps clsXUNQuestion::MultsAllowed"""
    mults_return: str
    """Wraps clsXUNQuestion::MultsReturn"""
    na_choice: int
    """Wraps clsXUNQuestion::NAChoice"""
    no_response: float
    """Wraps clsXUNQuestion::NoResponse"""
    question_name: str
    """Wraps clsXUNQuestion::QuestionName"""
    question_text: str
    """Wraps clsXUNQuestion::QuestionText"""
    @property
    def region(self) -> Optional[Region]:
        """Wraps clsXUNQuestion::Field"""
    required: bool
    """Wraps clsXUNQuestion::Required"""
    respondent_id: bool
    """Wraps clsXUNQuestion::RespondentID"""
    rubric: bool
    """Wraps clsXUNQuestion::Rubric"""
    subjective_field: bool
    """Wraps clsXUNQuestion::SubjectiveField"""
    subjective_points: float
    """Wraps clsXUNQuestion::SubjectivePoints"""
    tag: str
    """Wraps clsXUNQuestion::Tag"""
    tally: bool
    """Wraps clsXUNQuestion::Tally"""
    test_version_id: bool
    """Wraps clsXUNQuestion::TestVersionID"""

class TimingMark:
    """A timing mark of a page, in image pixels. Wraps clsXUNTimingMark"""

    def __init__(self) -> None: ...
    height: int
    """Wraps clsXUNTimingMark::Height"""
    left: int
    """Wraps clsXUNTimingMark::Left"""
    top: int
    """Wraps clsXUNTimingMark::Top"""
    width: int
    """Wraps clsXUNTimingMark::Width"""

class Pages(Sequence[Page]):
    """The pages of a template as a sequence. Wraps clsXUNPages"""

    def __len__(self) -> int: ...
    @overload
    def __getitem__(self, index: int) -> Page: ...
    @overload
    def __getitem__(self, key: str) -> Page: ...
    def __contains__(self, key: object) -> bool: ...
    def __iter__(self) -> Iterator[Page]: ...
    def __delitem__(self, index: int) -> None: ...
    def remove(self, key: str) -> None: ...
    def add(self, item: Page, before: _Where = None, after: _Where = None) -> bool: ...

class Regions(Sequence[Region]):
    """The regions of a page as a sequence. Wraps clsXUNFields"""

    def __len__(self) -> int: ...
    @overload
    def __getitem__(self, index: int) -> Region: ...
    @overload
    def __getitem__(self, key: str) -> Region: ...
    def __contains__(self, key: object) -> bool: ...
    def __iter__(self) -> Iterator[Region]: ...
    def __delitem__(self, index: int) -> None: ...
    def remove(self, key: str) -> None: ...
    def add(self, item: Region, before: _Where = None, after: _Where = None) -> bool: ...

class Questions(Sequence[Question]):
    """The questions of a region as a sequence. Wraps clsXUNQuestions"""

    def __len__(self) -> int: ...
    @overload
    def __getitem__(self, index: int) -> Question: ...
    @overload
    def __getitem__(self, key: str) -> Question: ...
    def __contains__(self, key: object) -> bool: ...
    def __iter__(self) -> Iterator[Question]: ...

class TimingMarks(Sequence[TimingMark]):
    """The timing marks of a page as a sequence. Wraps clsXUNTimingMarks"""

    def __len__(self) -> int: ...
    @overload
    def __getitem__(self, index: int) -> TimingMark: ...
    @overload
    def __getitem__(self, key: str) -> TimingMark: ...
    def __contains__(self, key: object) -> bool: ...
    def __iter__(self) -> Iterator[TimingMark]: ...
    def __delitem__(self, index: int) -> None: ...
    def remove(self, key: str) -> None: ...
    def add(self, mark: TimingMark, key: Optional[str] = None) -> bool: ...

def read_form(template: Template, images: Iterable[_Image], clip_folder: Union[str, PathLike[str]] = "") -> Dict[str, Any]:
    """One form's record: the content of a line of `xuntemplate read --json`."""

def read_forms(
    template: Template,
    images: Iterable[_Image],
    jobs: int = 0,
    as_frame: bool = False,
    clip_folder: Union[str, PathLike[str]] = "",
) -> Union[List[Dict[str, Any]], pandas.DataFrame]:
    """Records as read_form gives them, or with as_frame=True a DataFrame of the CSV's cells."""
