"""The way through the wizard with a watch that plays along, page by page, by keyboard."""

from driver import pages
from driver.person import Person
from driver.watch import Watch
from driver.wizard import Sight


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


def go_to_page(person: Person, number: int, watch: Watch, pair: bool = True) -> Sight:
    """From the page that is shown, forward to that one."""
    while (sight := person.look()).number != number:
        assert sight.page, "there is no page to go on from"
        fill_in(person, sight.page, watch, pair)
        person.enter_when_offered()
        sight = person.wait_for_page(sight.number + 1)
    return sight
