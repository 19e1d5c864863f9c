"""Reads the example scans on a local Dask cluster of two worker processes; the same call takes
a client of a real cluster (docs/python.md).

    PYTHONPATH=build/python python3 examples/python/read_on_dask.py examples/templates/exam.omr \
        examples/scans/exam-1.png examples/scans/exam-2.jpg examples/scans/exam-3.png
"""

import sys

from distributed import Client, LocalCluster

import xuntemplate.dask

if __name__ == "__main__":  # the workers are processes of their own
    with LocalCluster(n_workers=2, threads_per_worker=1, dashboard_address=None) as cluster, \
            Client(cluster) as client:
        frame = xuntemplate.dask.read_forms(client, sys.argv[1], sys.argv[2:], batch_size=1)
        print(frame.iloc[:, :6].to_string(index=False))
