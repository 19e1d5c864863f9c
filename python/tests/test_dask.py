"""The Dask path gives the records one process gives, also when a worker is killed mid-run."""

import os
import signal
import threading
import time

import pytest

distributed = pytest.importorskip("distributed")

import xuntemplate
import xuntemplate.dask
from conftest import EXAMPLES, SCANS

TEMPLATE = str(EXAMPLES / "exam.omr")
SCAN_FILES = [str(SCANS / name) for name in ("exam-1.png", "exam-2.jpg", "exam-3.png")]


@pytest.fixture(scope="module")
def client():
    with distributed.LocalCluster(
        n_workers=2, threads_per_worker=1, processes=True, dashboard_address=None
    ) as cluster, distributed.Client(cluster) as client:
        yield client


@pytest.fixture(scope="module")
def one_process():
    with xuntemplate.Template.read(TEMPLATE) as template:
        yield lambda forms, as_frame: xuntemplate.read_forms(template, forms, as_frame=as_frame)


def test_records_and_frame_as_one_process_gives_them(client, one_process):
    forms = SCAN_FILES * 3
    records = xuntemplate.dask.read_forms(client, TEMPLATE, forms, batch_size=2, as_frame=False)
    assert records == one_process(forms, False)
    frame = xuntemplate.dask.read_forms(client, TEMPLATE, forms, batch_size=4)
    expected = one_process(forms, True)
    assert list(frame.columns) == list(expected.columns)
    assert frame.values.tolist() == expected.values.tolist()
    # Both workers took part.
    assert len(client.scheduler_info()["workers"]) == 2


def test_no_forms_and_bad_arguments(client):
    empty = xuntemplate.dask.read_forms(client, TEMPLATE, [])
    assert len(empty) == 0 and "status" in empty.columns
    with pytest.raises(ValueError):
        xuntemplate.dask.read_forms(client, TEMPLATE, SCAN_FILES, batch_size=0)
    with pytest.raises(xuntemplate.Error):  # raised on the worker, re-raised here
        xuntemplate.dask.read_forms(client, str(SCANS / "missing.omr"), SCAN_FILES)


def _batches_done(dask_scheduler):
    return sum(
        1
        for key, task in dask_scheduler.tasks.items()
        if str(key).startswith("_read_batch") and task.state == "memory"
    )


def test_a_killed_worker_loses_no_record(client, one_process):
    forms = SCAN_FILES * 40
    expected = one_process(forms, False)
    victim = sorted(client.scheduler_info()["workers"])[0]
    pid = client.run(os.getpid, workers=[victim])[victim]
    killed = threading.Event()

    def kill_mid_run():
        # Once a few batches are done: the victim then holds finished results and unfinished work.
        deadline = time.monotonic() + 60
        while client.run_on_scheduler(_batches_done) < 4 and time.monotonic() < deadline:
            time.sleep(0.01)
        os.kill(pid, signal.SIGKILL)
        killed.set()

    killer = threading.Thread(target=kill_mid_run)
    killer.start()
    records = xuntemplate.dask.read_forms(client, TEMPLATE, forms, batch_size=1, as_frame=False)
    finished_first = not killed.is_set()
    killer.join()
    assert not finished_first, "the worker must die while forms are read"
    assert records == expected
    client.wait_for_workers(2, timeout=60)  # the nanny brought a new worker up
    assert pid not in client.run(os.getpid).values()
