#!/usr/bin/env bash
# Installs every build and test dependency from Debian's packages. Safe to run again: when
# everything is present it changes nothing and does not touch the network.
set -euo pipefail

# Build and test dependencies. Add a package here, on its own line.
PACKAGES=(
  build-essential
  cmake
  ninja-build
  g++
  clang              # the sanitizer build
  clang-format       # the formatting gate
  libgtest-dev
  libgmock-dev
  libbenchmark-dev
  libinih-dev        # the INI tokenizer the template file benchmark compares with
  libssl-dev         # triple DES for the value cipher
  libicu-dev         # case folding of keys
  libzip-dev         # template archives
  libgraphicsmagick1-dev    # page images: TIFF, PNG, JPEG, PCX, DCX in, PCX out
  libgraphicsmagick++1-dev  # the recognition tests and make_examples draw page images with it
  libpng-dev         # PNG scans read straight to grey
  libjpeg-dev        # JPEG scans read straight to grey
  libzxing-dev       # barcode type detection; the tests draw barcodes with it
  libopencv-dev      # the recognition engine's image work (core and imgproc)
  libtesseract-dev   # the reader's OCR regions
  tesseract-ocr-eng  # the English data the OCR regions are read with by default
  fonts-dejavu-core  # the reading tests print text in OCR regions with DejaVu Sans
  libcli11-dev       # the xuntemplate command line
  nlohmann-json3-dev # xuntemplate dump and build
  chromium           # the xuntemplate render test looks at the SVG in a browser
  python3            # the render test reads the browser's screenshot
  python3-dev        # the Python module's headers
  pybind11-dev       # the Python module's bindings
  python3-numpy      # the Python module takes page images as numpy arrays
  python3-pytest     # the Python module's tests
  python3-pandas     # the Python module's read_forms(as_frame=True)
  python3-distributed  # reading forms on a Dask cluster
  python3-pil        # the Python module's tests decode scans into arrays
  pkg-config
  ca-certificates
)

missing=()
for package in "${PACKAGES[@]}"; do
  status=$(dpkg-query -W -f='${Status}' "$package" 2>/dev/null || true)
  if [[ "$status" != "install ok installed" ]]; then
    missing+=("$package")
  fi
done

if ((${#missing[@]} == 0)); then
  echo "setup: all ${#PACKAGES[@]} packages already installed"
  exit 0
fi

if ((EUID == 0)); then
  as_root=()
elif command -v sudo >/dev/null 2>&1; then
  as_root=(sudo)
else
  echo "setup: need root or sudo to install: ${missing[*]}" >&2
  exit 1
fi

echo "setup: installing ${missing[*]}"
# Passed through env because sudo drops the caller's environment.
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get update
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
  apt-get install -y --no-install-recommends "${missing[@]}"
