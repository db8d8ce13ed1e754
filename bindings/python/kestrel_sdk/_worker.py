"""A thread of its own: the library keeps its selection for each thread, and Python's callers come on any."""
from __future__ import annotations

import concurrent.futures
import os
import queue
import sys
import threading
import weakref
from typing import Any, Callable, Optional, Tuple, TypeVar

from ._errors import ClosedError

Jobs = queue.SimpleQueue[Optional[Tuple[concurrent.futures.Future[Any], Callable[[], Any]]]]
R = TypeVar("R")

# Windows does not interrupt a wait for Ctrl-C, so it is made in slices there.
_SLICE = 0.1 if sys.platform == "win32" else None
# For the end of a thread. It is not waited for longer: a call in its middle may take minutes and ends by itself.
_PATIENCE = 1.0


class Worker:
    """Runs functions one after the other on its thread, until it is closed, forgotten, or the interpreter ends."""

    def __init__(self, name: str) -> None:
        self._jobs: Jobs = queue.SimpleQueue()
        self._process = os.getpid()
        self._thread = threading.Thread(target=_serve, args=(self._jobs,), name=name, daemon=True)
        self._thread.start()
        self._end = weakref.finalize(self, _finish, self._jobs, self._thread, self._process)

    @property
    def usable(self) -> bool:
        """Neither closed nor left behind by a fork."""
        return self._end.alive and os.getpid() == self._process

    def submit(self, function: Callable[[], R]) -> concurrent.futures.Future[R]:
        """Cancelling the future before its turn keeps the function from being run."""
        if os.getpid() != self._process:
            raise ClosedError("this Printer was opened before the process forked; open one in the child")
        if not self._end.alive:
            raise ClosedError("this Printer is closed; open it anew")
        future: concurrent.futures.Future[R] = concurrent.futures.Future()
        self._jobs.put((future, function))
        return future

    def run(self, function: Callable[[], R]) -> R:
        """Its result. When the wait is interrupted, a function that has begun goes on to its end, unheard."""
        future = self.submit(function)
        try:
            while not concurrent.futures.wait([future], _SLICE).done:
                pass
            return future.result()
        finally:
            future.cancel()

    def close(self) -> None:
        """Ends the thread after what it has been given, and with it the library's object."""
        self._end()


def _serve(jobs: Jobs) -> None:
    while True:
        job = jobs.get()
        if job is None:
            return
        future, function = job
        if future.set_running_or_notify_cancel():
            try:
                result = function()
            except BaseException as reason:  # whatever it is belongs to the caller
                future.set_exception(reason)
            else:
                future.set_result(result)
        # While the thread waits it must keep nobody alive.
        job = future = function = result = None  # type: ignore[assignment]


def _finish(jobs: Jobs, thread: threading.Thread, process: int) -> None:
    if os.getpid() != process:
        return
    jobs.put(None)
    if thread is not threading.current_thread():
        thread.join(_PATIENCE)
