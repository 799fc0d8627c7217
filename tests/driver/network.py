"""Cables of the home network, to pull and to put back."""

import os
import subprocess


def _ip(*arguments: str, on_watch: bool = False) -> None:
    host = os.environ["KALVO_WATCH_HOST"].split() if on_watch else []
    subprocess.run([*host, "ip", *arguments], check=True, timeout=10)


def unplug_computer() -> None:
    _ip("link", "set", "lan", "down")


def plug_in_computer() -> None:
    _ip("link", "set", "lan", "up")
    # Went with the link.
    _ip("route", "replace", "default", "via", "192.168.1.1")


def remove_gateway() -> None:
    """Leaves the computer in its network, which now leads nowhere else."""
    _ip("route", "delete", "default")


def unplug_watch() -> None:
    _ip("link", "set", "lan", "down", on_watch=True)


def plug_in_watch() -> None:
    _ip("link", "set", "lan", "up", on_watch=True)


def add_vpn() -> None:
    """From now on the way out of the network leads through a line that has no gateway's address, as VPNs have it."""
    _ip("link", "add", "vpn", "type", "veth", "peer", "name", "vpn-end")
    _ip("link", "set", "vpn", "up")
    _ip("link", "set", "vpn-end", "up")
    _ip("address", "add", "10.8.0.2/24", "dev", "vpn")
    _ip("route", "replace", "default", "dev", "vpn")
