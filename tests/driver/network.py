"""Cables of the home network, to pull and to put back."""

import os
import subprocess


def on_watch(*command: str) -> list[str]:
    """The command that runs this one on the watch's host."""
    return [*os.environ["KALVO_WATCH_HOST"].split(), *command]


def _run(*command: str) -> None:
    subprocess.run(command, check=True, timeout=10)


def unplug_computer() -> None:
    _run("ip", "link", "set", "lan", "down")


def plug_in_computer() -> None:
    _run("ip", "link", "set", "lan", "up")
    # Went with the link.
    _run("ip", "route", "replace", "default", "via", "192.168.1.1")


def remove_gateway() -> None:
    """Leaves the computer in its network, which now leads nowhere else."""
    _run("ip", "route", "delete", "default")


def unplug_watch() -> None:
    _run(*on_watch("ip", "link", "set", "lan", "down"))


def plug_in_watch() -> None:
    _run(*on_watch("ip", "link", "set", "lan", "up"))


def add_vpn() -> None:
    """From now on the way out of the network leads through a line that has no gateway's address, as VPNs have it."""
    _run("ip", "link", "add", "vpn", "type", "veth", "peer", "name", "vpn-end")
    _run("ip", "link", "set", "vpn", "up")
    _run("ip", "link", "set", "vpn-end", "up")
    _run("ip", "address", "add", "10.8.0.2/24", "dev", "vpn")
    _run("ip", "route", "replace", "default", "dev", "vpn")
