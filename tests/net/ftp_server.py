#!/usr/bin/python3
# A local FTP server for the transport's tests: user "ann" (password
# "secret") may do everything, anonymous may read; both see the same root.
# Prints the port it listens on. An optional second argument caps downloads
# at that many bytes a second.
import logging
import sys

from pyftpdlib.authorizers import DummyAuthorizer
from pyftpdlib.handlers import FTPHandler, ThrottledDTPHandler
from pyftpdlib.servers import FTPServer

logging.basicConfig(level=logging.CRITICAL)
authorizer = DummyAuthorizer()
authorizer.add_user("ann", "secret", sys.argv[1], perm="elradfmw")
authorizer.add_anonymous(sys.argv[1])
ThrottledDTPHandler.write_limit = int(sys.argv[2]) if len(sys.argv) > 2 else 0
FTPHandler.authorizer = authorizer
FTPHandler.dtp_handler = ThrottledDTPHandler
FTPHandler.auth_failed_timeout = 0
server = FTPServer(("127.0.0.1", 0), FTPHandler)
print(server.address[1], flush=True)
server.serve_forever(handle_exit=False)
