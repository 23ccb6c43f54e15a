"""Talks to glasspaned with Python's own XML-RPC client: usage xmlrpc_client.py PATH_OF_GLASSPANED"""

import re
import subprocess
import sys
import xmlrpc.client


def main(program):
    server = subprocess.Popen([program, "--host", "builtin", "--port", "0", "--bind", "127.0.0.1"],
                              stdout=subprocess.PIPE, text=True)
    try:
        port = re.search(r":(\d+),", server.stdout.readline()).group(1)
        proxy = xmlrpc.client.ServerProxy("http://127.0.0.1:%s/any/path" % port)
        version = proxy.CheckConnection()
        assert version == "1.0.5", version
        size = proxy.Snapshot_MaximumRect()
        assert tuple(size) == (1280, 720), size
    finally:
        server.terminate()
        assert server.wait(timeout=10) == 0


main(sys.argv[1])
