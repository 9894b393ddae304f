rm -r copy && echo deleted
