; only a comment

