#!/usr/bin/env python3
"""Installs the npm packages of the lock file into the working directory; skips the test if the
registry cannot be reached and the packages are not in npm's cache either."""
import pathlib
import subprocess
import sys

sys.path.append(str(pathlib.Path(__file__).resolve().parents[1]))
sys.dont_write_bytecode = True
import require  # noqa: E402

COMMAND = ["npm", "ci", "--ignore-scripts", "--no-audit", "--no-fund", "--prefer-offline",
           "--loglevel=error", "--fetch-retries=0", "--fetch-timeout=15000"]
UNREACHABLE = ("ECONNREFUSED", "ECONNRESET", "EAI_AGAIN", "ENOTFOUND", "EHOSTUNREACH",
               "ENETUNREACH", "ETIMEDOUT", "ERR_SOCKET_TIMEOUT", "ENOTCACHED",
               # A proxy answers, or a mirror that does not have the packages.
               "E403", "E404", "E407", "E500", "E502", "E503", "E504",
               "SELF_SIGNED_CERT_IN_CHAIN", "UNABLE_TO_GET_ISSUER_CERT_LOCALLY")


def main():
    require.require(["npm", "node"])
    try:
        done = subprocess.run(COMMAND, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                              stdin=subprocess.DEVNULL, timeout=120)
    except subprocess.TimeoutExpired:
        require.skip("the npm registry did not answer within two minutes")
    if done.returncode == 0:
        return 0
    code = next((code for code in UNREACHABLE if code in done.stdout), None)
    if code:
        require.skip("the npm registry cannot be reached (%s)" % code)
    print(done.stdout)
    return 1


if __name__ == "__main__":
    sys.exit(main())
