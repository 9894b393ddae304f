cp -r small copy && echo copied
