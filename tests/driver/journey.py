"""The way through the wizard with a watch that plays along, page by page, by keyboard."""

from collections.abc import Callable

from driver import pages
from driver.person import Person
from driver.watch import Watch
from driver.wizard import Sight

# Called on every page when it is filled in, just before the person moves on.
Filled = Callable[[Sight], None]


def _nothing(_: Sight) -> None:
    pass


def fill_in(person: Person, page: pages.Page, watch: Watch, pair: bool = True) -> None:
    """Does what the page asks for. A watch that trusts this computer already need not be paired."""
    if page.box:
        person.tick_by_key(page.box)
    elif page.number == 5:
        # The first three numbers of the address stand there already, with the caret behind them.
        person.type(watch.address.rsplit(".", 1)[1])
        person.expect(pages.ADDRESS, watch.address)
        person.write(pages.PORT, str(watch.port))
    elif page.number == 6 and not pair:
        person.tick_by_key(pages.SKIP_PAIRING)
    elif page.number == 6:
        person.write(pages.PAIRING_CODE, watch.code)
        person.write(pages.PAIRING_PORT, str(watch.pairing_port))


def go_on(person: Person, watch: Watch, filled: Filled = _nothing, pair: bool = True) -> None:
    """Fills the page in and presses Enter."""
    page = person.look().page
    assert page, "there is no page to go on from"
    fill_in(person, page, watch, pair)
    button = "Finish" if page is pages.PAGES[-1] else "Next"
    person.wait_for_next(button=button)
    filled(person.rest())
    person.enter_when_offered(button)


def go_to_page(person: Person, number: int, watch: Watch, filled: Filled = _nothing, pair: bool = True) -> Sight:
    """From the page that is shown, forward to that one."""
    while (sight := person.look()).number != number:
        go_on(person, watch, filled, pair)
        sight = person.wait_for_page(sight.number + 1)
    return sight
