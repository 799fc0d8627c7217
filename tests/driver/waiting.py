"""Waiting with an end."""

import time
from collections.abc import Callable
from typing import TypeVar

T = TypeVar("T")


class WaitedTooLong(AssertionError):
    """What was waited for did not come."""


def wait_for(what: str, look: Callable[[], T], seconds: float = 10.0, every: float = 0.05) -> T:
    """Calls `look` until it returns something true, and returns that.

    Raises WaitedTooLong, which names `what`, after `seconds`; the last look is never earlier than that.
    """
    end = time.monotonic() + seconds
    while True:
        late = time.monotonic() >= end
        if found := look():
            return found
        if late:
            raise WaitedTooLong(f"waited {seconds:g} s for {what}")
        time.sleep(every)


def wait_for_value(what: str, ask: Callable[[], object], wanted: object, seconds: float = 10.0) -> None:
    """Asks until the answer is the wanted one. The last answer is told when it does not come."""
    last: object = None

    def comes() -> bool:
        nonlocal last
        last = ask()
        return last == wanted

    try:
        wait_for(f"{what} to be {wanted!r}", comes, seconds)
    except WaitedTooLong as error:
        raise WaitedTooLong(f"{error}; it was {last!r}") from None
