"""Reading forms at scale on a Dask cluster.

Forms are read independently, so a cluster spreads them: each worker process loads the template
and the recognition engine once, forms go out in batches, and the records come back in the order
the forms were given. A worker that dies takes no record with it: the scheduler gives its
unfinished batches to another worker (Dask's own recovery of lost tasks), and a batch's records
reach the caller only as a whole.

A real cluster is used the same way, through a client of its scheduler::

    from distributed import Client
    import xuntemplate.dask

    client = Client("tcp://scheduler.example.org:8786")
    frame = xuntemplate.dask.read_forms(client, "/shared/exam.omr", paths)

The template and the scans must be readable by every worker under the same paths (a shared file
system, or an object store mounted alike on every machine), and every worker needs this package
installed, built against the same library.
"""

from __future__ import annotations

import os
import threading
from typing import Any, Dict, List, Sequence, Union

import xuntemplate

__all__ = ["read_forms"]

# The templates a worker process has loaded, by path, with the file's modification time: a worker
# reads a template once however many batches it reads, and again only when the file changed.
_templates: Dict[str, Any] = {}
_templates_lock = threading.Lock()


def _template(path: str) -> "xuntemplate.Template":
    try:
        stamp = os.stat(path).st_mtime_ns
    except OSError:
        stamp = None  # Template.read says what is wrong, as the library's own error
    with _templates_lock:
        held = _templates.get(path)
        if held is None or stamp is None or held[0] != stamp:
            held = (stamp, xuntemplate.Template.read(path))
            _templates[path] = held
        return held[1]


def _read_batch(template_path: str, forms: List[Any], as_frame: bool):
    # One form at a time: the worker's threads are Dask's to use.
    return xuntemplate.read_forms(_template(template_path), forms, jobs=1, as_frame=as_frame)


def read_forms(
    client,
    template_path: Union[str, os.PathLike],
    forms: Sequence[Any],
    batch_size: int = 8,
    as_frame: bool = True,
) -> Union[List[Dict[str, Any]], "pandas.DataFrame"]:
    """Reads every form of ``forms`` on the cluster of ``client`` (a ``distributed.Client``).

    ``forms``: one entry a form, as ``xuntemplate.read_forms`` takes them: the path of its scan
    (one image, or a multi-page TIFF), or a list of the paths of its pages. ``batch_size``: forms
    a task; larger batches cost less scheduling, smaller ones spread better over few forms.
    Returns the records in the order of ``forms``: with ``as_frame`` (the default) one pandas
    DataFrame with the columns and cells of ``xuntemplate read``'s CSV, otherwise the plain dicts
    ``xuntemplate.read_forms`` gives. The template is read on the workers, by its absolute path.
    """
    if batch_size < 1:
        raise ValueError("batch_size must be at least 1")
    forms = [os.fspath(f) if isinstance(f, os.PathLike) else f for f in forms]
    template_path = os.path.abspath(os.fspath(template_path))
    batches = [forms[i : i + batch_size] for i in range(0, len(forms), batch_size)]
    futures = client.map(
        _read_batch,
        [template_path] * len(batches),
        batches,
        [as_frame] * len(batches),
        pure=False,  # the same forms twice are read twice
    )
    results = client.gather(futures)
    if as_frame:
        import pandas

        if not results:  # the columns still come from the template, read where it lies
            return client.submit(_read_batch, template_path, [], True, pure=False).result()
        return pandas.concat(results, ignore_index=True)
    return [record for batch in results for record in batch]
