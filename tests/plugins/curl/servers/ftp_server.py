"""Serves the files of a directory by FTP on a free port of 127.0.0.1, to anybody and to one user.

usage: ftp_server.py DIRECTORY USER PASSWORD

Prints the port. A file whose name begins with "cut" is sent up to its tenth byte, then the data connection is closed.
"""

import sys

from pyftpdlib.authorizers import DummyAuthorizer
from pyftpdlib.handlers import DTPHandler, FTPHandler
from pyftpdlib.log import config_logging
from pyftpdlib.servers import FTPServer


class CuttingConnection(DTPHandler):
    def send(self, data):
        file = self.file_obj
        if file is None or not file.name.rpartition("/")[2].startswith("cut"):
            return super().send(data)
        sent = super().send(data[:10])
        self.close()
        return sent


class Handler(FTPHandler):
    dtp_handler = CuttingConnection
    use_sendfile = False
    auth_failed_timeout = 0


def main():
    directory, user, password = sys.argv[1:]
    config_logging(level=50)
    Handler.authorizer = DummyAuthorizer()
    Handler.authorizer.add_anonymous(directory)
    Handler.authorizer.add_user(user, password, directory)
    server = FTPServer(("127.0.0.1", 0), Handler)
    print(server.address[1], flush=True)
    server.serve_forever(handle_exit=False)


main()
