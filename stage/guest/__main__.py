"""python3 -m stage.guest COMMAND...: runs the command as root in the guest machine and gives its output and status."""

import subprocess
import sys

from stage.guest.machine import HERE, GuestFailed, Machine


def main():
    if not sys.argv[1:]:
        print(__doc__, file=sys.stderr)
        return 2
    try:
        subprocess.run([HERE / "prepare"], check=True)
        return Machine().run(sys.argv[1:])
    except (GuestFailed, subprocess.CalledProcessError) as failure:
        print(failure, file=sys.stderr)
        return 1


if __name__ == "__main__":
    sys.exit(main())
