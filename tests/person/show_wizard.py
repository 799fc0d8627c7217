"""The wizard for whoever sits at this machine, with an emulated watch beside it.

Prints what the person would read off the watch, and ends with the wizard.
"""

import sys

from driver.package import write_package
from driver.program import Program
from driver.watch import Watch


def main() -> int:
    with Watch() as watch, Program() as program:
        package = write_package(program.folder)
        print(f"The watch shows    address {watch.address}, port {watch.port}")
        print(f"When it pairs      code {watch.code}, port {watch.pairing_port}")
        print(f"The package is     {package.name}, beside the installer", flush=True)
        code = program.wait(24 * 3600)
        print(*watch.events, sep="\n")
        if watch.store.exists():
            same = watch.has_received(package)
            print("The watch received the package" + (" byte for byte" if same else ", CHANGED"))
        return code


if __name__ == "__main__":
    sys.exit(main())
