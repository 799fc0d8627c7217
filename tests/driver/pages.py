"""The wizard's pages, in order, as the person who goes through them knows them."""

from dataclasses import dataclass

TITLE = "KALVO Solvane Android Watch Installer"

# The ids of the frame's buttons.
BACK, NEXT, FINISH, CANCEL = 12323, 12324, 12325, 2
BUTTONS = {BACK: "Back", NEXT: "Next", FINISH: "Finish", CANCEL: "Cancel"}
BUTTONS_BY_NAME = {name: number for number, name in BUTTONS.items()}

# Controls of the pages that do work.
ABOUT = 1039
ADDRESS, PORT = 1018, 1030
PAIRING_CODE, ADDRESS_SHOWN, PAIRING_PORT, SKIP_PAIRING = 1032, 1035, 1036, 1037
APK_PATH, BROWSE = 1038, 1022


@dataclass(frozen=True)
class Page:
    """A page. Its body text's id tells it from every other."""

    number: int
    title: str
    body: int
    box: int | None = None
    status: int | None = None


PAGES = (
    Page(1, "Welcome to the Solvane Android watch installer", 1028),
    Page(2, "Connect to Wi-Fi network", 1014, box=1015),
    Page(3, "Turn on developer options", 1010, box=1012),
    Page(4, "Turn on stay awake when charging", 1046, box=1047),
    Page(5, "Turn on Wireless debugging", 1016, status=1031),
    Page(6, "Pair watch to workstation", 1034, status=1033),
    Page(7, "Install Solvane client (APK file)", 1019, status=1021),
    Page(8, "Solvane client installed", 1054),
    Page(9, "Turn off stay awake when charging", 1050, box=1051),
    Page(10, "Turn on Wireless debugging", 1052, box=1053),
    Page(11, "Revoke ebugging authorizations", 1048, box=1049),
    Page(12, "Turn off developer options", 1042, box=1043),
    Page(13, "Disconnect from Wi-Fi network", 1044, box=1045),
    Page(14, "Finished Solvane application installation", 1040),
)

_BY_BODY = {page.body: page for page in PAGES}


def page_with_body(control_id: int) -> Page | None:
    return _BY_BODY.get(control_id)
