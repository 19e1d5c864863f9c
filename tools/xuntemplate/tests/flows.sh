#!/usr/bin/env bash
# End-to-end flows of the tool that take several steps:
#   flows.sh FLOW TOOL EXAMPLES WORK [CHROMIUM CHECK_PNG SYNTHSCAN]
# FLOW is one of roundtrip, convert, image, render, print, checklines, register, read, grade,
# batch, robust.
# WORK is emptied first.
set -euo pipefail
flow=$1 tool=$2 examples=$3 work=$4 chromium=${5:-} check_png=${6:-} synthscan=${7:-}
rm -rf "$work" && mkdir -p "$work" && cd "$work"

fail() { echo "FAIL: $*" >&2; exit 1; }
first_bytes() { head -c "$2" "$1" | od -An -tx1 | tr -d ' \n'; }

# Draws an SVG the way a person would see it, in a browser of its own.
screenshot() {
  "$chromium" --headless --no-sandbox --disable-gpu --hide-scrollbars \
    --user-data-dir="$work/browser" --window-size="$3" --screenshot="$2" "file://$work/$1" \
    >/dev/null 2>&1 || fail "chromium could not draw $1"
  [[ -s $2 ]] || fail "chromium wrote no screenshot of $1"
}

# A PCX page at 100 dpi, white with one square from (500,700) to (700,900): black in a 1-bit
# image, red in a 24-bit one (three planes of 8 bits).
make_pcx() {
  python3 - "$1" "$2" <<'PY'
import struct, sys
path, bits = sys.argv[1], int(sys.argv[2])
w, h = 850, 1100
planes = 1 if bits == 1 else 3
depth = 1 if bits == 1 else 8
line = (w * depth + 15) // 16 * 2
head = struct.pack("<BBBBHHHHHH", 10, 5, 1, depth, 0, 0, w - 1, h - 1, 100, 100)
head += b"\0" * 48 + b"\0" + bytes([planes]) + struct.pack("<HH", line, 1) + b"\0" * 58
out = bytearray(head)
for y in range(h):
    inside = 700 <= y < 900
    for plane in range(planes):
        if bits == 1:
            row = bytearray(b"\xff" * line)
            if inside:
                for x in range(500, 700):
                    row[x // 8] &= ~(0x80 >> (x % 8)) & 0xFF
        else:
            row = bytearray(b"\xff" * line)
            if inside and plane > 0:  # red keeps its red plane full
                row[500:700] = b"\0" * 200
        for b in row:
            out += bytes([0xC1, b]) if b >= 0xC0 else bytes([b])
open(path, "wb").write(out)
PY
}

# The document without its questions' keys, and region links to them by key.
without_question_keys() {
  python3 - "$1" <<'PY'
import json, sys
doc = json.load(open(sys.argv[1]))
for page in doc["Template"]["Pages"]:
    for region in page["Regions"]:
        region.pop("ImageLinkQuestionKey", None)
        for question in region["Questions"]:
            question.pop("Key", None)
print(json.dumps(doc, indent=1))
PY
}

case $flow in
roundtrip)
  # dump then build gives an equal template, for every example.
  for example in "$examples"/*.omr; do
    name=$(basename "$example" .omr)
    # Page images go beside the document, so an archive example keeps its image through build.
    "$tool" dump "$example" -o "$name.json" --images "$name.images"
    "$tool" build "$name.json" -o "$name.omr" >/dev/null
    "$tool" dump "$name.omr" -o "$name.again.json" --images "$name.images"
    # Built questions keep the keys their lists gave them (docs/xuntemplate.md).
    without_question_keys "$name.json" >"$name.a.json"
    without_question_keys "$name.again.json" >"$name.b.json"
    cmp -s "$name.a.json" "$name.b.json" || fail "$name: dump of the built template differs"
    "$tool" check "$name.omr" >/dev/null || fail "$name: the built template does not check clean"
  done
  # A script's minimal document: absent keys keep their defaults.
  cat >minimal.json <<'JSON'
{"Format": "xuntemplate", "FormatVersion": 1, "Template": {"PageWidth": 8.5, "PageHeight": 11,
 "Pages": [{"Regions": [{"FieldName": "Note", "RecognitionType": 4, "Left": 10, "Right": 300,
   "Top": 10, "Bottom": 60, "Questions": [{"QuestionName": "Note"}]}]}]}}
JSON
  "$tool" build minimal.json -o minimal.omr >/dev/null
  "$tool" check minimal.omr | grep -qx "minimal.omr: ok" || fail "minimal template not clean"
  # Setting OCR raised the threshold to 70 before the document's own value could be applied.
  "$tool" dump minimal.omr -o minimal.again.json
  grep -q '"Threshold": 70' minimal.again.json || fail "OCR threshold not kept"
  ;;
convert)
  cp "$examples/exam.omr" exam.omr
  # A file the library wrote is already normal: converting it changes no byte, except the
  # template's Name, which files hold for information only and reading does not take back.
  "$tool" convert exam.omr same.omr >/dev/null
  sed 's/^Name=Unit test\r$/Name=\r/' exam.omr >expected.omr
  cmp -s expected.omr same.omr || fail "convert changed a normal file"
  rm expected.omr
  cp same.omr exam.omr
  "$tool" convert exam.omr wide.omr --encoding utf16 | grep -q "UTF-16LE" || fail "no UTF-16"
  [[ $(first_bytes wide.omr 2) == fffe ]] || fail "wide.omr has no byte-order mark"
  "$tool" convert wide.omr narrow.omr --encoding ansi >/dev/null
  cmp -s exam.omr narrow.omr || fail "UTF-16 and back is not the same file"
  # In place, with no temporary file or backup left behind.
  "$tool" convert wide.omr wide.omr >/dev/null
  [[ $(first_bytes wide.omr 2) == fffe ]] || fail "in-place convert lost the encoding"
  [[ $(ls | sort | tr '\n' ' ') == "exam.omr narrow.omr same.omr wide.omr " ]] ||
    fail "convert left files behind: $(ls)"
  # Text Windows-1252 cannot hold keeps a file UTF-16 even when ANSI is asked for.
  "$tool" convert "$examples/survey.omr" survey.omr --encoding ansi 2>note.txt >/dev/null
  grep -q "written as UTF-16LE" note.txt || fail "no note about the kept encoding"
  ;;
image)
  make_pcx page.pcx 1
  "$tool" dump "$examples/exam.omr" -o exam.json
  python3 - <<'PY'
import json
doc = json.load(open("exam.json"))
page = doc["Template"]["Pages"][0]
page.update(ImageFile="page.pcx", XDPI=100, YDPI=100, ImageWidth=850, ImageHeight=1100)
json.dump(doc, open("exam.json", "w"), indent=2)
PY
  "$tool" build exam.json -o imaged.omr >/dev/null
  [[ $(first_bytes imaged.omr 2) == 504b ]] || fail "a template with an image is not an archive"
  "$tool" info imaged.omr | grep -q "page 1: .*; image 850x1100 px at 100x100 dpi" ||
    fail "info does not show the page image"
  # The image comes back out byte for byte, and the document names it.
  "$tool" dump imaged.omr -o out/imaged.json --images out/images
  cmp -s page.pcx out/images/*.pcx || fail "the extracted image differs"
  grep -q '"ImageFile": "images/' out/imaged.json || fail "the dump does not name the image"
  "$tool" build out/imaged.json -o rebuilt.omr >/dev/null
  [[ $(first_bytes rebuilt.omr 2) == 504b ]] || fail "the rebuilt template lost its image"
  "$tool" convert imaged.omr converted.omr | grep -q "zip archive" || fail "archive not kept"
  "$tool" render converted.omr -o page.svg >/dev/null
  grep -q 'href="data:image/bmp;base64,' page.svg || fail "the SVG has no page image"
  screenshot page.svg page.png 910,1250
  # The page starts 30 pixels in from the picture's corner: the black square of the image shows
  # under nothing, white page around it.
  python3 "$check_png" page.png --pixel 630,830,000000 --pixel 630,1000,ffffff \
    --pixel 800,830,ffffff
  # A colour scan the same way.
  make_pcx colour.pcx 24
  sed 's/"page.pcx"/"colour.pcx"/' exam.json >colour.json
  "$tool" build colour.json -o colour.omr >/dev/null
  "$tool" render colour.omr -o colour.svg >/dev/null
  screenshot colour.svg colour.png 910,1250
  python3 "$check_png" colour.png --pixel 630,830,ff0000 --pixel 630,1000,ffffff
  ;;
print)
  # The exam at 100 dpi, pixel for pixel the page units: the timing mark, the outline of the
  # answers' first bubble (left edge 112, rows 470 to 485), paper beside it.
  "$tool" print "$examples/exam.omr" -o exam.png --dpi 100 >/dev/null
  python3 "$check_png" exam.png --pixel 20,32,000000 --near 112,477,000000,1 \
    --pixel 108,477,ffffff --pixel 700,1000,ffffff --pixel 849,1099,ffffff
  # The scanned example over its own page image, at 150 dpi.
  out=$("$tool" print "$examples/scanned.omr" --dpi 150 -o scanned.png)
  [[ $out == "scanned.png: page 1 of 1 at 150 dpi" ]] || fail "print said: $out"
  python3 "$check_png" scanned.png --pixel 1274,1649,ffffff --near 168,716,000000,1
  # A failed print leaves the file that was there.
  echo "kept" >kept.png
  if "$tool" print "$examples/exam.omr" --page 3 -o kept.png 2>/dev/null; then fail "page 3 printed"; fi
  [[ $(cat kept.png) == kept ]] || fail "a failed print changed the file"
  ;;
render)
  "$tool" render "$examples/exam.omr" -o exam.svg >/dev/null
  screenshot exam.svg exam.png 910,1250
  # Page white inside a grey surround, black outline and timing mark, OMR regions blue with
  # their bubbles, the form ID barcode orange.
  python3 "$check_png" exam.png --pixel 10,10,e6e6e6 --pixel 700,1000,ffffff \
    --pixel 30,600,000000 --pixel 50,70,000000 \
    --count 1f77b4,800 --count ff7f0e,500 --count 000000,3000
  "$tool" render "$examples/survey.omr" --page 2 -o survey.svg >/dev/null
  screenshot survey.svg survey.png 910,1250
  python3 "$check_png" survey.png --count 9467bd,1000 --count 1f77b4,300
  # Landscape: wider than high. The link group's red line, the image region green, the
  # respondent tracker's dashed orange.
  "$tool" render "$(dirname "$check_png")/data/linked.omr" -o linked.svg >/dev/null
  screenshot linked.svg linked.png 1160,960
  python3 "$check_png" linked.png --pixel 1100,500,ffffff --pixel 1140,500,e6e6e6 \
    --pixel 400,165,d62728 --count d62728,300 --count 2ca02c,1500 --count ff7f0e,800
  # The scanned exam: its page image is the page as printed, and the bubbles drawn over it must
  # lie on the printed ones. The drawn ellipses say where the library puts each bubble; the same
  # SVG without its regions shows the print alone. At each bubble's left, right, top and bottom
  # the print has ink and the drawing its stroke; at its centre the print is paper.
  "$tool" render "$examples/scanned.omr" -o scanned.svg >/dev/null
  python3 - <<'PY'
import re
svg = open("scanned.svg").read()
x0, y0 = (float(v) for v in re.search(r'viewBox="(\S+) (\S+) ', svg).groups())
bubbles = re.findall(r'<ellipse cx="(\S+)" cy="(\S+)" rx="(\S+)" ry="(\S+)"/>', svg)
if len(bubbles) != 80:
    raise SystemExit(f"FAIL: {len(bubbles)} bubbles drawn, the scanned exam has 80")
with open("printed.txt", "w") as printed, open("drawn.txt", "w") as drawn:
    for cx, cy, rx, ry in ((float(v) for v in b) for b in bubbles):
        x, y = cx - x0, cy - y0  # the picture's pixel of a page position
        for px, py in ((x - rx, y), (x + rx, y), (x, y - ry), (x, y + ry)):
            printed.write(f"--near {round(px)},{round(py)},000000,1\n")
            drawn.write(f"--near {round(px)},{round(py)},1f77b4,1\n")
        printed.write(f"--pixel {int(x)},{int(y)},ffffff\n")
open("printed.svg", "w").write(re.sub(r'<g class="region .*?</text>\n</g>\n', "", svg, flags=re.S))
PY
  grep -q "<ellipse" printed.svg && fail "printed.svg still has the drawn bubbles"
  screenshot scanned.svg scanned.png 910,1250
  screenshot printed.svg printed.png 910,1250
  python3 "$check_png" printed.png --args-from printed.txt
  python3 "$check_png" scanned.png --args-from drawn.txt
  ;;
checklines)
  # Warnings name the same lines in UTF-16 files (with a mark, and big-endian without one) and in
  # an archive.
  data=$(dirname "$check_png")/data
  cp "$data/warnings.omr" warnings.omr
  python3 -c 'import sys; open(sys.argv[2], "wb").write(b"\xff\xfe" + open(sys.argv[1], "rb").read().decode("cp1252").encode("utf-16-le"))' \
    warnings.omr wide.omr
  python3 -c 'import sys; open(sys.argv[2], "wb").write(open(sys.argv[1], "rb").read().decode("cp1252").encode("utf-16-be"))' \
    warnings.omr big.omr
  "$tool" check warnings.omr >ansi.txt || true
  for wide in wide big; do
    status=0
    "$tool" check $wide.omr >utf16.txt || status=$?
    ((status == 1)) || fail "check of warnings in $wide.omr ended with $status"
    sed "s/^warnings.omr:/$wide.omr:/" ansi.txt >expected.txt
    cmp -s expected.txt utf16.txt || fail "$wide.omr lines differ: $(diff expected.txt utf16.txt)"
  done
  # The same template saved plain and as an archive (it has a page image) warns alike, at the
  # same lines: the archive's are those of the template inside it, written as the plain one is.
  make_pcx page.pcx 1
  "$tool" dump warnings.omr -o plain.json
  "$tool" build plain.json -o plain.omr >/dev/null
  sed 's/"ImageFile": ""/"ImageFile": "page.pcx"/' plain.json >archive.json
  "$tool" build archive.json -o archive.omr >/dev/null
  [[ $(first_bytes archive.omr 2) == 504b ]] || fail "archive.omr is not an archive"
  "$tool" check plain.omr >plain.txt || true
  "$tool" check archive.omr >archive.txt || true
  grep -q '^archive.omr:[0-9]*: warning' archive.txt || fail "archive warnings name no line"
  sed 's/^plain.omr:/archive.omr:/' plain.txt >expected.txt
  cmp -s expected.txt archive.txt || fail "archive warnings: $(diff expected.txt archive.txt)"
  ;;
read)
  # Three filled, turned scans of the exam and a file that is no image, read one at a time and
  # two at a time: the same rows, in the order given, the broken file a row of its own.
  for i in 1 2 3; do
    "$synthscan" "$examples/exam.omr" --random $i --seed $i --dpi 150 --rotate 1.5 \
      -o form$i.png >/dev/null || fail "synthscan could not make form$i.png"
  done
  printf 'not an image' >broken.png
  "$tool" read "$examples/exam.omr" form1.png broken.png form2.png form3.png -o one.csv \
    --json one.jsonl -j 1 >out.txt || fail "read -j 1: $(cat out.txt)"
  "$tool" read "$examples/exam.omr" form1.png broken.png form2.png form3.png -o two.csv \
    -j 2 >/dev/null || fail "read -j 2 failed"
  cmp -s one.csv two.csv || fail "read -j 2 gave other rows than -j 1"
  [[ $(head -1 one.csv | tr -d '\r') == \
    "form,status,message,Student,Answers_1,Answers_2,Answers_3,Answers_4,Answers_5" ]] ||
    fail "read: header $(head -1 one.csv)"
  [[ $(wc -l <one.csv) == 5 ]] || fail "read: $(cat one.csv)"
  [[ $(sed -n 3p one.csv) == "broken.png,error,\"page 1: not a TIFF, PNG, JPEG, PCX or DCX"* ]] ||
    fail "read: the broken file's row is $(sed -n 3p one.csv)"
  [[ $(grep -c '"status":"error"' one.jsonl) == 1 ]] || fail "read: $(cat one.jsonl)"
  [[ $(grep -c '"registered":true' one.jsonl) == 3 ]] || fail "read: $(cat one.jsonl)"
  grep -q "^one.csv: 4 forms, [0-9] to review, 1 not read$" out.txt || fail "read: $(cat out.txt)"
  # The exam with its form barcode returned as an item and a picture region: the barcode read
  # into its column, the picture written to --clips and named in its own.
  "$tool" dump "$examples/exam.omr" -o exam.json >/dev/null
  python3 - <<'PY'
import copy, json
d = json.load(open("exam.json"))
page = d["Template"]["Pages"][0]
form_id = page["Regions"][0]
form_id["Questions"][0]["IDAdd"] = True
clip = copy.deepcopy(form_id)
clip.update(Key="", FieldName="Photo", RecognitionType=2, FieldType=1, Left=450, Top=120,
            Right=750, Bottom=420, ImageClipType=3, ImageClipFile="{form}-{region}",
            ImageClipAddColumn=True, BarcodeLength=0)
clip["Questions"][0].update(Key="", QuestionName="Photo", IDType=0, IDValue="", IDAdd=False)
page["Regions"].append(clip)
json.dump(d, open("clips.json", "w"))
PY
  "$tool" build clips.json -o clips.omr >/dev/null || fail "build clips.omr"
  "$synthscan" clips.omr --random 4 --seed 4 --dpi 200 --rotate 1 -o clipform.png >/dev/null ||
    fail "synthscan could not make clipform.png"
  "$tool" read clips.omr clipform.png -o clips.csv --json clips.jsonl --clips pictures \
    >/dev/null || fail "read --clips failed"
  # Read, or to review when the made-up marks hold a double mark.
  [[ $(sed -n 2p clips.csv | tr -d '\r') == clipform.png,re*,EXAM-A,*,clipform-Photo.jpg ]] ||
    fail "read --clips: $(cat clips.csv)"
  [[ $(first_bytes pictures/clipform-Photo.jpg 3) == ffd8ff ]] || fail "the clip is no JPEG"
  grep -q '"clip":"pictures/clipform-Photo.jpg"' clips.jsonl || fail "read: $(cat clips.jsonl)"
  ;;
grade)
  # Exam forms scored with a key file and with a key sheet of the same answers; a picture for
  # each form to review, which a browser draws: the scan, the bubbles, the flagged answers.
  for i in 1 2 3 4; do
    "$synthscan" "$examples/exam.omr" --random $i --seed $i --dpi 150 --rotate 1 \
      -o form$i.png >/dev/null || fail "synthscan could not make form$i.png"
  done
  printf 'not an image' >broken.png
  printf 'question,answer\nAnswers_1,B\nAnswers_2,A\nAnswers_3,D\nAnswers_4,A\nAnswers_5,C\n' \
    >key.csv
  printf 'Answers,1,2,full\nAnswers,2,1,full\nAnswers,3,4,full\nAnswers,4,1,full\nAnswers,5,3,full\n' \
    >key-marks.csv
  "$synthscan" "$examples/exam.omr" --marks key-marks.csv --dpi 200 --rotate -1 -o key.png \
    >/dev/null || fail "synthscan could not make key.png"
  # A form with the key's answers, every mark clear: read, full marks, no picture.
  "$synthscan" "$examples/exam.omr" --marks key-marks.csv --dpi 150 --seed 5 --rotate 0.5 \
    -o clean.png >/dev/null || fail "synthscan could not make clean.png"
  forms=(form1.png form2.png broken.png form3.png clean.png form4.png)
  "$tool" read "$examples/exam.omr" "${forms[@]}" -o csv.csv --json csv.jsonl --key key.csv \
    --review review >out.txt 2>err.txt || fail "read --key key.csv: $(cat out.txt err.txt)"
  [[ ! -s err.txt ]] || fail "read --key key.csv warned: $(cat err.txt)"
  "$tool" read "$examples/exam.omr" "${forms[@]}" -o sheet.csv --key key.png -j 2 \
    >/dev/null 2>err.txt || fail "read --key key.png: $(cat err.txt)"
  [[ ! -s err.txt ]] || fail "read --key key.png warned: $(cat err.txt)"
  cmp -s csv.csv sheet.csv || fail "the key sheet scored otherwise: $(diff csv.csv sheet.csv)"
  [[ $(head -1 csv.csv | tr -d '\r') == \
    "form,status,message,score,Student,Answers_1,Answers_2,Answers_3,Answers_4,Answers_5" ]] ||
    fail "read --key: header $(head -1 csv.csv)"
  python3 - "$check_png" <<'PY'
import csv, json, os, xml.dom.minidom
key = {"Answers_1": "B", "Answers_2": "A", "Answers_3": "D", "Answers_4": "A", "Answers_5": "C"}
rows = list(csv.DictReader(open("csv.csv", newline="")))
forms = [json.loads(line) for line in open("csv.jsonl")]
for row, form in zip(rows, forms):
    name = row["form"]
    picture = os.path.join("review", os.path.splitext(name)[0] + ".svg")
    if row["status"] == "error":
        if row["score"] != "" or form["score"]["scored"]:
            raise SystemExit(f"FAIL: {name}: a form not read scored {row['score']}")
    else:
        # Correct 2, Incorrect -0.5, no response 0, from the template; the exam's answers are
        # all graded.
        total = 0
        for answer in form["answers"]:
            if answer["name"] in key:
                value = answer["value"]
                total += 0 if answer["status"] == "blank" else 2 if value == key[answer["name"]] else -0.5
        if float(row["score"]) != total or form["score"]["total"] != total:
            raise SystemExit(f"FAIL: {name}: score {row['score']}, the answers make {total}")
        if len(form["score"]["items"]) != 5 or form["score"]["possible"] != 10:
            raise SystemExit(f"FAIL: {name}: {form['score']}")
    if (row["status"] == "read") == os.path.exists(picture):
        raise SystemExit(f"FAIL: {name} is {row['status']}: picture {os.path.exists(picture)}")
    if row["status"] != "read":
        if len(form["review"]) == 0 or row["message"] == "":
            raise SystemExit(f"FAIL: {name}: to review without a reason")
        svg = open(picture).read()
        xml.dom.minidom.parseString(svg)  # well-formed
        for reason in form["review"]:
            if reason["why"].replace("&", "&amp;").replace("<", "&lt;") not in svg:
                raise SystemExit(f"FAIL: {picture} does not say {reason['why']}")
if sum(row["status"] == "review" for row in rows) == 0:
    raise SystemExit("FAIL: no form to review: the pictures are not tested")
clean = rows[forms.index(next(f for f in forms if f["form"] == "clean.png"))]
if clean["status"] != "read" or clean["score"] != "10":
    raise SystemExit(f"FAIL: clean.png: {clean}")
PY
  review=$(grep -l 'class="flagged"' review/*.svg | head -1)
  [[ -n $review ]] || fail "no review picture outlines an answer"
  screenshot "$review" review.png 1500,1600
  # The scan (its black print), marked bubbles blue, flagged answers outlined red.
  python3 "$check_png" review.png --count 000000,2000 --count 1f77b4,300 --count d62728,150
  # A key the template cannot use: the line at fault, nothing written.
  printf 'Answers_1,B\nNope,A\n' >bad.csv
  status=0
  "$tool" read "$examples/exam.omr" form1.png -o bad-out.csv --key bad.csv 2>err.txt || status=$?
  [[ $status == 2 ]] || fail "a bad key: exit status $status"
  grep -q "^xuntemplate: error: bad.csv:2: the template has no question 'Nope'$" err.txt ||
    fail "a bad key: $(cat err.txt)"
  [[ ! -e bad-out.csv ]] || fail "a bad key: the CSV was written"
  ;;
register)
  cp "$examples/scanned.omr" scanned.omr
  "$tool" register scanned.omr >out.txt || fail "register: $(cat out.txt)"
  cmp -s scanned.omr "$examples/scanned.omr" || fail "register without -o changed its input"
  grep -q "^2 of 2 OMR regions registered$" out.txt || fail "register: $(cat out.txt)"
  [[ $(grep -c "^  [A-Za-z]*: registered, " out.txt) == 2 ]] || fail "register: $(cat out.txt)"
  # Saved registered, a second registration finds the bubbles where the first put them: the
  # first stored what it found as the printed grid.
  "$tool" register scanned.omr -o again.omr >/dev/null
  [[ $(first_bytes again.omr 2) == 504b ]] || fail "the registered template is not an archive"
  "$tool" register again.omr >second.txt || fail "register again: $(cat second.txt)"
  [[ $(grep -c "registered left .*, moved 0, 0$" second.txt) == 2 ]] ||
    fail "the second registration moved: $(cat second.txt)"
  # A region moved off the page image is not registered, and says why, though it keeps the
  # registration it had; the others are, and the file is still saved.
  "$tool" dump scanned.omr -o moved.json --images images
  python3 - <<'PY'
import json
doc = json.load(open("moved.json"))
for region in doc["Template"]["Pages"][0]["Regions"]:
    if region["FieldName"] == "Answers":
        region["Left"] += 800
        region["Right"] += 800
json.dump(doc, open("moved.json", "w"), indent=2)
PY
  "$tool" build moved.json -o moved.omr >/dev/null
  status=0
  "$tool" register moved.omr -o moved-registered.omr >moved.txt || status=$?
  [[ $status == 1 ]] || fail "a region not registered: exit status $status, not 1"
  grep -q "^  Answers: not registered (5 x 4 bubbles asked for): the engine could not fit" \
    moved.txt || fail "no reason given: $(cat moved.txt)"
  grep -q "^  Student: registered, 10 x 6 bubbles" moved.txt || fail "$(cat moved.txt)"
  grep -q "^1 of 2 OMR regions registered; saved to moved-registered.omr$" moved.txt ||
    fail "$(cat moved.txt)"
  [[ -s moved-registered.omr ]] || fail "nothing saved"
  # --page reports that page alone; a template without page images has nothing to register.
  "$tool" register moved.omr --page 1 >page.txt || true
  cmp -s <(sed 's/; saved to .*//' moved.txt) page.txt || fail "--page 1: $(diff moved.txt page.txt)"
  "$tool" register "$examples/exam.omr" >exam.txt || fail "exam.omr: $(cat exam.txt)"
  grep -q "^page 1: no page image, nothing to register$" exam.txt || fail "$(cat exam.txt)"
  grep -q "^0 of 0 OMR regions registered$" exam.txt || fail "$(cat exam.txt)"
  ;;
batch)
  "$tool" batch write batch.rbf --form "$examples/survey.omr" >/dev/null
  "$tool" batch info batch.rbf >info.txt
  grep -q "Pages:           2" info.txt || fail "merged template: $(cat info.txt)"
  # A header needs page ID regions, as every member of a batch does.
  "$tool" batch write bad.rbf --form "$examples/survey.omr" --header "$examples/exam.omr" \
    >/dev/null
  if "$tool" batch info bad.rbf >/dev/null 2>err.txt; then fail "merge without page IDs"; fi
  grep -q "Merge Error: .*page ID regions" err.txt || fail "merge error: $(cat err.txt)"
  if "$tool" batch write none.rbf --form "$examples/survey.omr" --header missing.omr \
    2>err.txt; then fail "batch with a missing header"; fi
  grep -q "Template Does Not Exist" err.txt || fail "missing header: $(cat err.txt)"
  ;;
robust)
  # Damaged copies of the examples (fixed seed): every command ends with a status of its own,
  # never a crash or a hang.
  python3 - "$examples" <<'PY'
import os, random, sys
rng = random.Random(91)
sources = [open(os.path.join(sys.argv[1], n), "rb").read() for n in ("exam.omr", "survey.omr")]
for i in range(60):
    data = bytearray(rng.choice(sources))
    for _ in range(rng.randint(1, 12)):
        at = rng.randrange(len(data))
        kind = rng.randrange(4)
        if kind == 0:
            data[at] = rng.randrange(256)
        elif kind == 1:
            del data[at:at + rng.randint(1, 200)]
        elif kind == 2:
            data[at:at] = rng.choice([b"[Field]\r\n", b"[Link]\r\nLinkedFields=9\r\n",
                                      b"NumRows=32767\r\n", b"ColGap=-5\r\n", b"\r\n",
                                      b"Left=-32768\r\n", b"[Question]\r\n"])
        else:
            data = data[:at]
            break
    open(f"damaged{i:02}.omr", "wb").write(bytes(data))
PY
  for file in damaged*.omr; do
    for command in "info $file" "check $file" "dump $file -o out.json" \
        "render $file -o out.svg" "convert $file out.omr"; do
      status=0
      # shellcheck disable=SC2086
      timeout 20 "$tool" $command >/dev/null 2>err.txt || status=$?
      ((status <= 2)) || fail "xuntemplate $command ended with status $status: $(cat err.txt)"
      lines=$(wc -l <err.txt)
      ((status == 0 || lines <= 1)) || fail "xuntemplate $command: $lines lines of errors"
    done
  done
  ;;
*)
  fail "unknown flow $flow"
  ;;
esac
