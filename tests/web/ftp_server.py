"""A read-only anonymous FTP server for the download tests.

Serves the folder named by the first argument on a free loopback port and prints that port on
one line; runs until it is killed.
"""

import sys

from pyftpdlib.authorizers import DummyAuthorizer
from pyftpdlib.handlers import FTPHandler
from pyftpdlib.servers import FTPServer


def main():
    authorizer = DummyAuthorizer()
    authorizer.add_anonymous(sys.argv[1])
    handler = FTPHandler
    handler.authorizer = authorizer
    server = FTPServer(("127.0.0.1", 0), handler)
    print(server.socket.getsockname()[1], flush=True)
    server.serve_forever()


if __name__ == "__main__":
    main()
