#!/usr/bin/python3
# A local FTP server on the root given: "ann" (password "secret") may do everything, anonymous may
# read. Prints its port and process id. A second argument caps downloads at that many bytes a second.
import logging
import os
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
print(server.address[1], os.getpid(), flush=True)
server.serve_forever(handle_exit=False)
