"""Reading generated forms through the Dask path with one and with two workers, and what a form
costs through Python against the C++ reader alone.

    PYTHONPATH=build/python /usr/bin/python3 bench/python/dask_read_bench.py build [COUNT]

Makes COUNT (200) scans of the letter form with build/bench/make_batch in a temporary folder,
then times, wall clock, each median of 3 runs:
  - xuntemplate.dask.read_forms on a LocalCluster of 1 and of 2 worker processes (one thread
    each), the cluster started and warmed (template loaded) before the clock starts;
  - xuntemplate.read_forms(jobs=1) in this process, per form;
  - `xuntemplate read -j 1` on the same forms, per form, less the tool's start-up (its run on
    one missing file).
"""

import os
import statistics
import subprocess
import sys
import tempfile
import time

import xuntemplate
import xuntemplate.dask
from distributed import Client, LocalCluster


def median_seconds(run, repeats=3):
    times = []
    for _ in range(repeats):
        start = time.perf_counter()
        run()
        times.append(time.perf_counter() - start)
    return statistics.median(times)


def dask_seconds(workers, template, paths):
    with LocalCluster(n_workers=workers, threads_per_worker=1, processes=True,
                      dashboard_address=None) as cluster, Client(cluster) as client:
        # Every worker loads the template and the engine before the clock starts.
        xuntemplate.dask.read_forms(client, template, paths[: 2 * workers], batch_size=1,
                                    as_frame=False)
        return median_seconds(lambda: xuntemplate.dask.read_forms(client, template, paths,
                                                                  as_frame=False))


def main():
    build = sys.argv[1]
    count = int(sys.argv[2]) if len(sys.argv) > 2 else 200
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run([os.path.join(build, "bench", "make_batch"), folder, str(count)], check=True)
        template = os.path.join(folder, "form.omr")
        paths = sorted(os.path.join(folder, f) for f in os.listdir(folder) if f.endswith(".png"))

        one = dask_seconds(1, template, paths)
        two = dask_seconds(2, template, paths)
        print(f"dask, {len(paths)} forms: 1 worker {one:.2f} s, 2 workers {two:.2f} s, "
              f"speed-up {one / two:.2f}x")

        sample = paths[:50]
        form = xuntemplate.Template.read(template)
        python = median_seconds(lambda: xuntemplate.read_forms(form, sample, jobs=1))
        tool = os.path.join(build, "tools", "xuntemplate", "xuntemplate")
        out = os.path.join(folder, "out.csv")
        missing = os.path.join(folder, "missing.png")
        startup = median_seconds(lambda: subprocess.run(
            [tool, "read", "-j", "1", "-o", out, template, missing], capture_output=True))
        native = median_seconds(lambda: subprocess.run(
            [tool, "read", "-j", "1", "-o", out, template, *sample], check=True,
            capture_output=True)) - startup
        per_python, per_native = python / len(sample), native / len(sample)
        print(f"per form, {len(sample)} forms, one thread: Python {per_python * 1000:.1f} ms, "
              f"C++ tool {per_native * 1000:.1f} ms, Python's overhead "
              f"{(per_python - per_native) * 1000:+.1f} ms ({per_python / per_native:.2f}x)")


if __name__ == "__main__":
    main()
